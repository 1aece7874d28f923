#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

class CStructField;

/// What an enum or struct key has beyond its simple fields. Slot order is contract.
class KES_API IMetadataDetail {
public:
    using FieldList = std::vector<const CStructField*>;
    using EnumMap = std::map<std::string, std::int32_t>;

    virtual std::int32_t Reserved0() const { return 0; }
    /// The fields in the order of the value's text; empty for all but a struct.
    virtual const FieldList& Fields() const;
    /// The enumerators in ascending order of their names; null for all but an enum.
    virtual const EnumMap* Enums() const { return nullptr; }
    virtual ~IMetadataDetail() = default;

protected:
    IMetadataDetail() = default;
    IMetadataDetail(const IMetadataDetail&) = default;
    IMetadataDetail& operator=(const IMetadataDetail&) = default;
};

}  // namespace VemoKesConfigTools
