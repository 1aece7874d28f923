#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "metadata/RecordTrace.h"

#include <cstdint>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

/// One index of an indexed key: a copy of the metadata, owned by its holder.
class TableIndex {
public:
    enum IndexTypeEnum : std::int32_t { INDEX_TYPE_INT = 0, INDEX_TYPE_ENUM = 1 };

    TableIndex(HostString name, std::uint32_t minimum, std::uint32_t maximum, IndexTypeEnum type)
        : mName(std::move(name)), mMinimum(minimum), mMaximum(maximum), mType(type) {
        TraceRecord("VEMO::Kes::ConfigurationTools::TableIndex::TableIndex");
    }

    const HostString& Name() const { return mName; }
    std::uint32_t Min() const { return mMinimum; }
    std::uint32_t Max() const { return mMaximum; }
    IndexTypeEnum Type() const { return mType; }
    /// The named values; empty for an integer index.
    const HostMap<HostString, std::uint32_t>& Enums() const { return mEnums; }

    /// Throws `std::invalid_argument` if the label already exists.
    void AddEnum(const HostString& label, std::uint32_t value) { mEnums.Add(label, value); }
    /// Throws `std::out_of_range` if the label does not exist.
    std::uint32_t EnumValue(const HostString& label) const { return mEnums.Item(label); }
    std::uint32_t EnumCount() const { return static_cast<std::uint32_t>(mEnums.Count()); }

private:
    HostString mName;
    std::uint32_t mMinimum;
    std::uint32_t mMaximum;
    IndexTypeEnum mType;
    HostMap<HostString, std::uint32_t> mEnums;
};

}  // namespace VEMO::Kes::ConfigurationTools
