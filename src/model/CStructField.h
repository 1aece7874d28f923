#pragma once

#include "messages/Export.h"

#include <cstdint>

namespace VemoKesConfigTools {

class IMetadata;

/// One field of a struct. The record is not owned.
class KES_API CStructField {
public:
    CStructField(const IMetadata* metadata, std::int32_t lsbBitPos, std::int32_t bitWidth)
        : mpMetadata(metadata), mLsbBitPos(lsbBitPos), mBitWidth(bitWidth) {}

    const IMetadata* Metadata() const { return mpMetadata; }
    /// Position of the field's lowest bit in the struct.
    std::int32_t ElemLsbBitPos() const { return mLsbBitPos; }
    std::int32_t ElemBitWidth() const { return mBitWidth; }

private:
    const IMetadata* mpMetadata;
    std::int32_t mLsbBitPos;
    std::int32_t mBitWidth;
};

}  // namespace VemoKesConfigTools
