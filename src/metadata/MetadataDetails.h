#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "metadata/RecordTrace.h"
#include "metadata/StructField.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

/// Details of an enum or struct key: its enumerators or fields.
class MetadataDetails {
public:
    using EnumMapRef = HostMapRef<HostString, std::int32_t>;
    using FieldListRef = HostListRef<std::shared_ptr<StructField>>;

    explicit MetadataDetails(HostString enumStructTypeName)
        : mEnumStructType(std::move(enumStructTypeName)),
          mEnums(std::make_shared<HostMap<HostString, std::int32_t>>()),
          mStructFields(std::make_shared<std::vector<std::shared_ptr<StructField>>>()) {
        TraceRecord("VEMO::Kes::ConfigurationTools::MetadataDetails::MetadataDetails");
    }

    /// Name of the enum or struct type; empty for a simple key.
    const HostString& EnumStructTypeName() const { return mEnumStructType; }
    /// The enumerators with their values, in ascending order of names; null if there are none.
    EnumMapRef Enums() const { return mEnums == nullptr || mEnums->Count() == 0 ? nullptr : mEnums; }
    void Enums(EnumMapRef enums) { mEnums = std::move(enums); }
    /// The fields, in the order of the value's text; null if there are none.
    FieldListRef StructFields() const { return mStructFields->empty() ? nullptr : mStructFields; }

    /// The containers themselves, for filling; never null unless a host set a null map. For use within the
    /// library only.
    const EnumMapRef& GetEnums() const { return mEnums; }
    const FieldListRef& GetStructFields() const { return mStructFields; }

private:
    HostString mEnumStructType;
    EnumMapRef mEnums;
    FieldListRef mStructFields;
};

}  // namespace VEMO::Kes::ConfigurationTools
