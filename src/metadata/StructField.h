#pragma once

#include "metadata/RecordTrace.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

class Metadata;

/// One field of a struct key.
class StructField {
public:
    StructField(std::shared_ptr<Metadata> metadata, std::int32_t elemLsbBitPos, std::int32_t elemBitWidth)
        : mData(std::move(metadata)), mElemLsbBitPos(elemLsbBitPos), mElemBitWidth(elemBitWidth) {
        TraceRecord("VEMO::Kes::ConfigurationTools::StructField::StructField");
    }

    /// The field's own record.
    const std::shared_ptr<Metadata>& MetaData() const { return mData; }
    /// Position of the field's least significant bit in the struct.
    std::int32_t ElemLsbBitPos() const { return mElemLsbBitPos; }
    /// Width in bits.
    std::int32_t ElemBitWidth() const { return mElemBitWidth; }

private:
    std::shared_ptr<Metadata> mData;
    std::int32_t mElemLsbBitPos;
    std::int32_t mElemBitWidth;
};

}  // namespace VEMO::Kes::ConfigurationTools
