#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "model/Payloads.h"

#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace VemoKesConfigTools {

namespace {

/// The types of payloads stand in the order of their widths, the signed ones first.
template <typename T>
constexpr auto PAYLOAD_TYPE = static_cast<PayloadTypeEnum>((std::is_unsigned_v<T> ? PAYLOAD_TYPE_UINT8
                                                                                  : PAYLOAD_TYPE_INT8) +
                                                           std::countr_zero(sizeof(T)));
static_assert(PAYLOAD_TYPE<std::int8_t> == PAYLOAD_TYPE_INT8 &&
              PAYLOAD_TYPE<std::uint64_t> == PAYLOAD_TYPE_UINT64);

}  // namespace

template <typename T>
CParserError IntAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, T value) {
    if (!metadata.IsValid()) return PE_UNKNOWN_NAME;
    const std::int64_t lo = metadata.Min();
    const std::int64_t hi = metadata.Max();
    // Numbers in a wider type, so that neither a sign nor a character type plays a part in the comparison.
    using Wide = std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>;
    const auto wide = static_cast<Wide>(value);
    if (std::cmp_less(wide, lo)) return {PE_VALUE_TOO_SMALL, RangeDetail(lo, hi, std::to_string(wide))};
    if (std::cmp_greater(wide, hi)) return {PE_VALUE_TOO_LARGE, RangeDetail(lo, hi, std::to_string(wide))};
    auto payload = std::make_unique<CIntegerPayload<T, PAYLOAD_TYPE<T>>>(value);
    payload->Use(metadata);
    payloads.push_back(payload.get());
    static_cast<void>(payload.release());
    return PE_NONE;
}

template <typename T>
bool CInteger<T>::Is(CTextReader& source) {
    const char c = source.PeekChar();
    return c >= '0' && c <= '9' && !source.Eof();
}

template <typename T>
CParserError CInteger<T>::Parse() {
    CParserError result;
    if (StartsHexNumber(*mpSource)) {
        mpSource->Skip(2);
        result = ReadHexNumber<T>(*mpSource, mValue, ANY_DIGITS);
    } else {
        std::uint16_t count = 0;
        result = ReadDecimalNumber<T>(*mpSource, mValue, count);
    }
    KESTEXT_TRACE(2, "CInteger::Parse", "%u", static_cast<unsigned>(mValue));
    return result;
}

template <typename T>
CParserError CInteger<T>::Action(std::vector<IPayload*>& payloads, CParseContext* /*context*/,
                                 const IMetadata& metadata) {
    return IntAction<T>(payloads, metadata, mValue);
}

template class CInteger<std::uint8_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::uint8_t);
template class CInteger<std::uint16_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::uint16_t);
template class CInteger<std::uint32_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::uint32_t);
template class CInteger<std::uint64_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::uint64_t);
template class CInteger<std::int8_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::int8_t);
template class CInteger<std::int16_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::int16_t);
template class CInteger<std::int32_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::int32_t);
template class CInteger<std::int64_t>;
template CParserError IntAction(std::vector<IPayload*>&, const IMetadata&, std::int64_t);

}  // namespace VemoKesConfigTools
