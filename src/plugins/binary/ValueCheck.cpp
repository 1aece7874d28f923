#include "plugins/binary/ValueCheck.h"

#include "model/CStructField.h"
#include "model/IMetadata.h"
#include "model/Payloads.h"
#include "model/ValueRules.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"

#include <cstdint>
#include <string>
#include <utility>

namespace VemoKesConfigTools {

namespace {

[[noreturn]] void Refuse(const std::string& cause) { throw Refusal(STR_PACKINT_ERROR, cause); }

std::string Range(std::int64_t lo, std::int64_t hi) {
    return lo == hi ? std::to_string(hi) : "between " + std::to_string(lo) + " and " + std::to_string(hi);
}

[[noreturn]] void RefuseType(const IMetadata& metadata) {
    Refuse("must have a value of the type " + metadata.TypeName());
}

/// The wide types keep signs and character types out of the comparison.
template <typename Wide, typename Payload, typename T>
void CheckInteger(IPayload& payload, const IMetadata& metadata, std::int64_t lo, std::int64_t hi) {
    const Wide value = *static_cast<const T*>(payload.RawData());
    if (std::cmp_less(value, lo) || std::cmp_greater(value, hi))
        Refuse("must be " + Range(lo, hi) + " (val=" + std::to_string(value) + ")");
    static_cast<Payload&>(payload).Use(metadata);
}

void CheckRange(IPayload& payload, const IMetadata& metadata, std::int64_t lo, std::int64_t hi) {
    switch (payload.Type()) {
        case PAYLOAD_TYPE_INT8:
            return CheckInteger<std::int64_t, CInt8Payload, std::int8_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_INT16:
            return CheckInteger<std::int64_t, CInt16Payload, std::int16_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_INT32:
            return CheckInteger<std::int64_t, CInt32Payload, std::int32_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_INT64:
            return CheckInteger<std::int64_t, CInt64Payload, std::int64_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_UINT8:
            return CheckInteger<std::uint64_t, CUint8Payload, std::uint8_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_UINT16:
            return CheckInteger<std::uint64_t, CUint16Payload, std::uint16_t>(payload, metadata, lo, hi);
        case PAYLOAD_TYPE_UINT32:
            return CheckInteger<std::uint64_t, CUint32Payload, std::uint32_t>(payload, metadata, lo, hi);
        default:
            return CheckInteger<std::uint64_t, CUint64Payload, std::uint64_t>(payload, metadata, lo, hi);
    }
}

void CheckString(const IPayload& payload, const IMetadata& metadata) {
    const std::int64_t lo = metadata.Min();
    const std::int64_t hi = metadata.Max();
    const std::uint32_t length = payload.Length();
    if (std::cmp_less(length, lo) || std::cmp_greater(length, hi))
        Refuse("must have " + Range(lo, hi) + " bytes, " + std::to_string(length) + " found");
}

void CheckEnum(CEnumPayload& payload, const IMetadata& metadata) {
    const IMetadataDetail* detail = metadata.Detail();
    const IMetadataDetail::EnumMap* enums = detail == nullptr ? nullptr : detail->Enums();
    if (enums == nullptr) RefuseType(metadata);
    const auto found = enums->find(payload.GetName());
    if (found == enums->end() || found->second != payload.GetValue()) {
        Refuse("has no enumerator " + payload.GetName() + " of the value " +
               std::to_string(payload.GetValue()));
    }
    payload.Use(metadata);
}

}  // namespace

void CheckLeaf(IPayload& payload, const IMetadata& metadata, const CStructField* field) {
    if (metadata.MetadataType() == METADATA_TYPE_STRUCT) RefuseType(metadata);
    const PayloadTypeEnum type = payload.Type();
    if (type == PAYLOAD_TYPE_ENUM) return CheckEnum(static_cast<CEnumPayload&>(payload), metadata);
    const std::string typeName = metadata.TypeName();
    if (type == PAYLOAD_TYPE_STRING) {
        if (typeName != STR_OCTET_STRING) RefuseType(metadata);
        return CheckString(payload, metadata);
    }
    if (field != nullptr && typeName == STR_INTEGER) {
        const BitField bits = BitFieldOf(*field);
        if (type != bits.type) RefuseType(metadata);
        CheckRange(payload, metadata, bits.min, bits.max);
    } else if (type != IntegerTypeOf(typeName)) {
        RefuseType(metadata);
    }
    CheckRange(payload, metadata, metadata.Min(), metadata.Max());
}

void CheckCount(std::size_t count, const IMetadata& metadata) {
    const std::int64_t lo = metadata.IsArray() ? metadata.ArrayMinLength() : 1;
    const std::int64_t hi = metadata.IsArray() ? metadata.ArrayMaxLength() : 1;
    if (std::cmp_less(count, lo) || std::cmp_greater(count, hi))
        Refuse("must have " + Range(lo, hi) + " items, " + std::to_string(count) + " found");
}

PayloadTypeEnum ArrayTypeOf(const IMetadata& metadata) {
    if (metadata.MetadataType() == METADATA_TYPE_STRUCT) return PAYLOAD_TYPE_STRUCT;
    return IntegerTypeOf(metadata.TypeName()).value_or(PAYLOAD_TYPE_STRING);
}

void CheckArray(PayloadTypeEnum type, std::size_t count, const IMetadata& metadata) {
    if (type != ArrayTypeOf(metadata)) RefuseType(metadata);
    CheckCount(count, metadata);
}

const IMetadataDetail::FieldList& CheckStruct(PayloadTypeEnum type, std::size_t count,
                                              const IMetadata& metadata) {
    const IMetadataDetail* detail = metadata.Detail();
    if (metadata.MetadataType() != METADATA_TYPE_STRUCT || type != PAYLOAD_TYPE_STRUCT || detail == nullptr)
        RefuseType(metadata);
    const IMetadataDetail::FieldList& fields = detail->Fields();
    if (count != fields.size()) {
        Refuse("must have " + std::to_string(fields.size()) + " fields, " + std::to_string(count) + " found");
    }
    return fields;
}

}  // namespace VemoKesConfigTools
