#include "model/ValueRules.h"

#include "model/CStructField.h"
#include "model/IMetadata.h"
#include "model/IMetadataUser.h"
#include "model/Payloads.h"
#include "model/Words.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace VemoKesConfigTools {

namespace {

struct TypeName {
    std::string_view name;
    PayloadTypeEnum type;
};

constexpr TypeName INTEGER_TYPES[] = {
    {STR_UINT8, PAYLOAD_TYPE_UINT8},   {STR_UINT16, PAYLOAD_TYPE_UINT16}, {STR_UINT32, PAYLOAD_TYPE_UINT32},
    {STR_UINT64, PAYLOAD_TYPE_UINT64}, {STR_INT8, PAYLOAD_TYPE_INT8},     {STR_INT16, PAYLOAD_TYPE_INT16},
    {STR_INT32, PAYLOAD_TYPE_INT32},   {STR_INT64, PAYLOAD_TYPE_INT64},   {STR_INTEGER, PAYLOAD_TYPE_INT64},
};

PayloadTypeEnum TypeOfWidth(std::int32_t width, bool isUnsigned) {
    if (width <= 8) return isUnsigned ? PAYLOAD_TYPE_UINT8 : PAYLOAD_TYPE_INT8;
    if (width <= 16) return isUnsigned ? PAYLOAD_TYPE_UINT16 : PAYLOAD_TYPE_INT16;
    if (width <= 32) return isUnsigned ? PAYLOAD_TYPE_UINT32 : PAYLOAD_TYPE_INT32;
    return isUnsigned ? PAYLOAD_TYPE_UINT64 : PAYLOAD_TYPE_INT64;
}

/// Whether the values, all strings, are such of the key.
bool TakesStrings(const std::vector<const IPayload*>& payloads, const IMetadata& metadata) {
    const std::string format = metadata.Format();
    if (metadata.TypeName() != STR_OCTET_STRING) return false;
    if (!format.empty() && format != STR_UNICODE_STRING && format != STR_MACADDR_STRING) return false;
    const std::size_t count = payloads.size();
    const bool rightCount = metadata.IsArray() ? std::cmp_greater_equal(count, metadata.ArrayMinLength()) &&
                                                     std::cmp_less_equal(count, metadata.ArrayMaxLength())
                                               : count <= 1;
    return rightCount && std::ranges::all_of(payloads, [&](const IPayload* payload) {
               const std::uint32_t length = payload->Length();
               return std::cmp_greater_equal(length, metadata.Min()) &&
                      std::cmp_less_equal(length, metadata.Max());
           });
}

}  // namespace

std::optional<PayloadTypeEnum> IntegerTypeOf(std::string_view typeName) {
    const auto* found = std::ranges::find(INTEGER_TYPES, typeName, &TypeName::name);
    return found == std::end(INTEGER_TYPES) ? std::nullopt : std::optional(found->type);
}

BitField BitFieldOf(const CStructField& field) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::string format = field.Metadata()->Format();
    const bool isUnsigned = format == STR_UNSIGNED_DECIMAL_STRING || format == STR_HEXADECIMAL_STRING;
    const PayloadTypeEnum type = TypeOfWidth(field.ElemBitWidth(), isUnsigned);
    const auto width = static_cast<std::uint16_t>(field.ElemBitWidth());
    if (width <= 1) return {type, 0, 1};
    if (width >= 64) return {type, isUnsigned ? 0 : Limits::min(), Limits::max()};
    const auto highest =
        static_cast<std::int64_t>((std::uint64_t{1} << (isUnsigned ? width : width - 1U)) - 1U);
    return {type, isUnsigned ? 0 : -highest - 1, highest};
}

bool IsString(const IPayload& payload) {
    return payload.Type() == PAYLOAD_TYPE_STRING && dynamic_cast<const CComplexPayload*>(&payload) == nullptr;
}

bool WasGivenRaw(const std::vector<const IPayload*>& payloads, const IMetadata& metadata) {
    if (std::ranges::all_of(payloads, [](const IPayload* payload) { return IsString(*payload); }))
        return !TakesStrings(payloads, metadata);
    const bool mayHoldStrings = metadata.TypeName() == STR_OCTET_STRING;
    return std::ranges::any_of(payloads, [&](const IPayload* payload) {
        // Strings never carry metadata; whatever else has none was given raw.
        if (IsString(*payload)) return !mayHoldStrings;
        const auto* user = dynamic_cast<const IMetadataUser*>(payload);
        return user == nullptr || user->Metadata() == nullptr;
    });
}

}  // namespace VemoKesConfigTools
