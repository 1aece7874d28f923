#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace VemoKesConfigTools {

/// One index of a table key.
class KES_API CTableIndex {
public:
    enum IndexTypeEnum : std::int32_t { INDEX_TYPE_INT = 0, INDEX_TYPE_ENUM = 1 };
    using EnumMap = std::map<std::string, std::int32_t>;

    CTableIndex(std::string name, std::int64_t min, std::int64_t max, IndexTypeEnum type, EnumMap enums)
        : mName(std::move(name)), mMin(min), mMax(max), mType(type), mEnums(std::move(enums)) {}

    const std::string& Name() const { return mName; }
    std::int64_t Min() const { return mMin; }
    std::int64_t Max() const { return mMax; }
    IndexTypeEnum Type() const { return mType; }
    /// The values that have a name; empty for an integer index.
    EnumMap Enums() const { return mEnums; }

private:
    std::string mName;
    std::int64_t mMin;
    std::int64_t mMax;
    IndexTypeEnum mType;
    EnumMap mEnums;
};

}  // namespace VemoKesConfigTools
