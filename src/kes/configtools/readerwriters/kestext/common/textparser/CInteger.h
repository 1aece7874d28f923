#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <cstdint>
#include <vector>

namespace VemoKesConfigTools {

/// The payload of an integer that the metadata allows.
template <typename T>
CParserError IntAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, T value);

/// An integer of any width.
class CIntegerBase : public CValue {
public:
    using CValue::CValue;
    /// The value widened to 64 bits; an unsigned 64-bit value as its bits.
    virtual std::int64_t GetValue() const = 0;
};

/// An integer of the width of `T`.
template <typename T>
class CInteger final : public CIntegerBase {
public:
    using CIntegerBase::CIntegerBase;

    /// Whether a decimal digit comes next. A sign does not count.
    static bool Is(CTextReader& source);
    /// integer ::= ("0x" | "0X") hex | decimal
    CParserError Parse() override;
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;
    std::int64_t GetValue() const override { return static_cast<std::int64_t>(mValue); }

    T mValue = 0;
};

extern template class CInteger<std::uint8_t>;
extern template class CInteger<std::uint16_t>;
extern template class CInteger<std::uint32_t>;
extern template class CInteger<std::uint64_t>;
extern template class CInteger<std::int8_t>;
extern template class CInteger<std::int16_t>;
extern template class CInteger<std::int32_t>;
extern template class CInteger<std::int64_t>;

}  // namespace VemoKesConfigTools
