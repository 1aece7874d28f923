#include "kes/configtools/readerwriters/kestext/common/kesparser/CPlainValue.h"

#include "kes/configtools/readerwriters/kestext/common/kesparser/CompositeValues.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CEnum.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/COctetString.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "model/CStructField.h"
#include "model/IMetadataDetail.h"
#include "model/Payloads.h"
#include "model/ValueRules.h"
#include "model/Words.h"

#include <memory>
#include <string>
#include <utility>

namespace VemoKesConfigTools {

bool CPlainValue::Read(const IMetadata& metadata) {
    return ReadScalar(CKesParser::TypeOf(metadata, /*checkArray=*/true), metadata);
}

bool CPlainValue::ReadScalar(KEYTYPE type, const IMetadata& metadata) {
    switch (type) {
        case KT_UINT8:
            return ReadIntegerValue<std::uint8_t>(metadata);
        case KT_UINT16:
            return ReadIntegerValue<std::uint16_t>(metadata);
        case KT_UINT32:
            return ReadIntegerValue<std::uint32_t>(metadata);
        case KT_UINT64:
            return ReadIntegerValue<std::uint64_t>(metadata);
        case KT_INT8:
            return ReadIntegerValue<std::int8_t>(metadata);
        case KT_INT16:
            return ReadIntegerValue<std::int16_t>(metadata);
        case KT_INT32:
            return ReadIntegerValue<std::int32_t>(metadata);
        case KT_INT64:
        case KT_INTEGER:
            return ReadIntegerValue<std::int64_t>(metadata);
        case KT_ENUM:
            return ReadEnum(metadata);
        case KT_OCTET_STRING:
            return ReadOctets(metadata);
        case KT_QUOTED:
            return mCursor.Peek() == '[' ? ReadOctets(metadata) : ReadQuoted(metadata);
        case KT_ARRAY:
            return ReadArray(metadata);
        case KT_STRUCT:
            return ReadStruct(metadata);
        default:
            return false;
    }
}

template <typename T>
bool CPlainValue::ReadInteger(T& value) {
    if (mCursor.TakeHexPrefix()) return ReadHexNumberAt<T>(mCursor, value, ANY_DIGITS) == PE_NONE;
    std::uint16_t count = 0;
    return ReadDecimalNumberAt<T>(mCursor, value, count) == PE_NONE;
}

template <typename T>
bool CPlainValue::ReadIntegerValue(const IMetadata& metadata) {
    T value = 0;
    return ReadInteger(value) && IntAction<T>(mPayloads, metadata, value).Ok();
}

bool CPlainValue::ReadEnum(const IMetadata& metadata) {
    const int c = mCursor.Peek();
    if (c >= '0' && c <= '9') {
        std::uint16_t number = 0;
        return ReadInteger(number) && EnumAction(mPayloads, metadata, {}, number).Ok();
    }
    const std::string_view name = mCursor.TakeAll(ENUM_CHARS);
    return !name.empty() && EnumAction(mPayloads, metadata, name, 0).Ok();
}

bool CPlainValue::ReadOctets(const IMetadata& metadata) {
    if (!mCursor.Take('[')) return false;
    std::string octets;
    for (;;) {
        mCursor.SkipBlanks();
        if (mCursor.Take(']')) return StringAction(mPayloads, metadata, std::move(octets), UNIT_OCTETS).Ok();
        std::uint8_t octet = 0;
        if (ReadHexNumberAt<std::uint8_t>(mCursor, octet, 2) != PE_NONE) return false;
        octets.push_back(static_cast<char>(octet));
    }
}

bool CPlainValue::ReadQuoted(const IMetadata& metadata) {
    static constexpr CCharSet SPECIAL("\"\\\n");
    if (!mCursor.Take('"')) return false;
    const std::string_view text = mCursor.TakeUntil(SPECIAL);
    // An escape needs a second look, and so does a line that goes on behind its end.
    if (!mCursor.Take('"')) return false;
    return StringAction(mPayloads, metadata, std::string(text), UNIT_CHARACTERS).Ok();
}

bool CPlainValue::ReadArray(const IMetadata& metadata) {
    if (!mCursor.Take('{')) return false;
    const KEYTYPE type = CKesParser::TypeOf(metadata, /*checkArray=*/false);
    const auto hi = static_cast<std::uint64_t>(metadata.ArrayMaxLength());
    std::uint64_t count = 0;
    do {
        mCursor.SkipBlanks();
        if (count == hi || !ReadScalar(type, metadata)) return false;
        ++count;
        mCursor.SkipBlanks();
    } while (mCursor.Take(','));
    return mCursor.Take('}') && count >= static_cast<std::uint64_t>(metadata.ArrayMinLength());
}

bool CPlainValue::ReadStruct(const IMetadata& metadata) {
    const IMetadataDetail* detail = metadata.Detail();
    if (detail == nullptr || detail->Fields().empty() || !mCursor.Take('{')) return false;
    auto outer = std::make_unique<CComplexPayload>(PAYLOAD_TYPE_STRUCT);
    outer->Use(metadata);
    outer->Reserve(detail->Fields().size());
    bool first = true;
    for (const CStructField* field : detail->Fields()) {
        if (!std::exchange(first, false) && !mCursor.Take(',')) return false;
        mCursor.SkipBlanks();
        if (!ReadField(*field, *outer)) return false;
        mCursor.SkipBlanks();
    }
    if (!mCursor.Take('}')) return false;
    mPayloads.push_back(outer.get());
    static_cast<void>(outer.release());
    return true;
}

bool CPlainValue::ReadField(const CStructField& field, CComplexPayload& outer) {
    const IMetadata& metadata = *field.Metadata();
    const std::size_t before = mPayloads.size();
    const bool isBitField = metadata.TypeName() == STR_INTEGER;
    if (isBitField ? !ReadBitField(field) : !Read(metadata)) return false;
    if (!metadata.IsArray()) {
        outer.AddField(mPayloads.back());
        mPayloads.pop_back();
        return true;
    }
    PayloadTypeEnum type = PAYLOAD_TYPE_STRUCT;
    if (metadata.MetadataType() != METADATA_TYPE_STRUCT &&
        !CStruct::GetPayloadType(metadata.TypeName(), type)) {
        return false;
    }
    auto inner = std::make_unique<CComplexPayload>(type);
    inner->Reserve(mPayloads.size() - before);
    for (std::size_t i = before; i < mPayloads.size(); ++i) inner->AddField(mPayloads[i]);
    mPayloads.resize(before);
    outer.AddField(inner.release());
    return true;
}

template <typename T>
bool CPlainValue::ReadBitFieldValue(const CStructField& field) {
    T value = 0;
    if (!ReadInteger(value)) return false;
    const BitField bits = BitFieldOf(field);
    const auto wide = static_cast<std::int64_t>(value);
    return wide >= bits.min && wide <= bits.max && IntAction<T>(mPayloads, *field.Metadata(), value).Ok();
}

bool CPlainValue::ReadBitField(const CStructField& field) {
    switch (CStruct::Width(field)) {
        case KT_UINT8:
            return ReadBitFieldValue<std::uint8_t>(field);
        case KT_UINT16:
            return ReadBitFieldValue<std::uint16_t>(field);
        case KT_UINT32:
            return ReadBitFieldValue<std::uint32_t>(field);
        case KT_INT8:
            return ReadBitFieldValue<std::int8_t>(field);
        case KT_INT16:
            return ReadBitFieldValue<std::int16_t>(field);
        case KT_INT32:
            return ReadBitFieldValue<std::int32_t>(field);
        default:
            // Wider fields are rare.
            return false;
    }
}

}  // namespace VemoKesConfigTools
