#include "kes/configtools/readerwriters/kestext/common/kesparser/CompositeValues.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "model/CStructField.h"
#include "model/IMetadataDetail.h"
#include "model/Payloads.h"
#include "model/ValueRules.h"
#include "model/Words.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <array>
#include <utility>

namespace VemoKesConfigTools {

namespace {

CParserError CheckRange(std::int64_t value, std::int64_t lo, std::int64_t hi, const std::string& fieldName) {
    if (value >= lo && value <= hi) return PE_NONE;
    std::string detail = fieldName.empty() ? std::string() : " " + fieldName;
    detail += " must be between " + std::to_string(lo) + " and " + std::to_string(hi) +
              " (val=" + std::to_string(value) + ")";
    return {value < lo ? PE_VALUE_TOO_SMALL : PE_VALUE_TOO_LARGE, std::move(detail)};
}

/// Reads a bit field. The range is checked also behind a number that its type has no room for, and then tells
/// more.
CParserError ParseBitField(CIntegerBase& value, const CStructField& field) {
    CParserError result = value.Parse();
    const BitField bits = BitFieldOf(field);
    CParserError range = CheckRange(value.GetValue(), bits.min, bits.max, {});
    return range.Ok() ? result : range;
}

CParserError ParseIntegerField(CIntegerBase& value, const IMetadata& metadata) {
    CParserError result = value.Parse();
    if (!result.Ok()) return result;
    return CheckRange(value.GetValue(), metadata.Min(), metadata.Max(), metadata.Name());
}

}  // namespace

CParserError CStruct::Parse() { return Parse(mpParseContext->ByName(mpMetadata->Name()), mpParseContext); }

CParserError CStruct::Parse(const IMetadata& metadata, CParseContext* context) {
    CParserError result;
    KESTEXT_SENTRY_RETURNING("CStruct::Parse", result);
    SkipWhitespace();
    if (mpSource->GetChar() != '{') return result = PE_MISSING_OPENING_BRACE;
    const IMetadataDetail* detail = metadata.Detail();
    // A struct whose fields nobody knows has no value that could be right.
    if (detail == nullptr || detail->Fields().empty()) return result = PE_VALUE_NOT_SUPPORTED;
    bool first = true;
    for (const CStructField* field : detail->Fields()) {
        if (!std::exchange(first, false)) {
            SkipWhitespace();
            if (mpSource->GetChar() != ',') return result = PE_MISSING_COMMA;
        }
        SkipWhitespace();
        if (result = ParseField(*field, context); !result.Ok()) return result;
    }
    SkipWhitespace();
    if (mpSource->GetChar() != '}') result = PE_MISSING_CLOSING_BRACE;
    return result;
}

CParserError CStruct::ParseField(const CStructField& field, CParseContext* context) {
    const IMetadata& metadata = *field.Metadata();
    CKesParser& parser = *context->mpParser;
    const bool isBitField = metadata.TypeName() == STR_INTEGER;
    std::unique_ptr<CValue> value(
        parser.GetValue(isBitField ? Width(field) : parser.KeyType(metadata, true)));
    if (!value) return PE_VALUE_NOT_SUPPORTED;
    value->mpMetadata = &metadata;
    CParserError result;
    if (auto* structure = dynamic_cast<CStruct*>(value.get())) {
        result = structure->Parse(metadata, context);
    } else if (auto* array = dynamic_cast<CArray*>(value.get())) {
        result = array->Parse(metadata, context);
    } else if (auto* integer = dynamic_cast<CIntegerBase*>(value.get())) {
        result = isBitField ? ParseBitField(*integer, field) : ParseIntegerField(*integer, metadata);
    } else {
        result = value->Parse();
    }
    if (result.Ok()) mItems.push_back(std::move(value));
    return result;
}

KEYTYPE CStruct::Width(const CStructField& field) {
    switch (BitFieldOf(field).type) {
        case PAYLOAD_TYPE_UINT8:
            return KT_UINT8;
        case PAYLOAD_TYPE_UINT16:
            return KT_UINT16;
        case PAYLOAD_TYPE_UINT32:
            return KT_UINT32;
        case PAYLOAD_TYPE_UINT64:
            return KT_UINT64;
        case PAYLOAD_TYPE_INT8:
            return KT_INT8;
        case PAYLOAD_TYPE_INT16:
            return KT_INT16;
        case PAYLOAD_TYPE_INT32:
            return KT_INT32;
        default:
            return KT_INT64;
    }
}

bool CStruct::GetPayloadType(const std::string& typeName, PayloadTypeEnum& type) {
    static constexpr std::array<std::pair<std::string_view, PayloadTypeEnum>, 9> TYPES = {{
        {STR_UINT8, PAYLOAD_TYPE_UINT8},
        {STR_UINT16, PAYLOAD_TYPE_UINT16},
        {STR_UINT32, PAYLOAD_TYPE_UINT32},
        {STR_UINT64, PAYLOAD_TYPE_UINT64},
        {STR_INT8, PAYLOAD_TYPE_INT8},
        {STR_INT16, PAYLOAD_TYPE_INT16},
        {STR_INT32, PAYLOAD_TYPE_INT32},
        {STR_INT64, PAYLOAD_TYPE_INT64},
        {STR_STRING, PAYLOAD_TYPE_STRING},
    }};
    const auto* found = std::ranges::find_if(
        TYPES, [&](const auto& entry) { return EqualsIgnoringCase(entry.first, typeName); });
    if (found == TYPES.end()) return false;
    type = found->second;
    return true;
}

CParserError CStruct::Action(std::vector<IPayload*>& payloads, CParseContext* context,
                             const IMetadata& metadata) {
    auto outer = std::make_unique<CComplexPayload>(PAYLOAD_TYPE_STRUCT);
    outer->Use(metadata);
    for (const std::unique_ptr<CValue>& item : mItems) {
        const IMetadata& field = *item->mpMetadata;
        COwnedPayloads made;
        if (CParserError result = item->Action(made.List(), context, field); !result.Ok()) return result;
        if (!field.IsArray()) {
            // A raw value without items has nothing to give, and every field must have its value.
            if (made.List().empty()) return PE_VALUE_NOT_SUPPORTED;
            if (made.List().size() == 1) {
                outer->AddField(made.List().front());
                made.Release();
                continue;
            }
        }
        PayloadTypeEnum type = PAYLOAD_TYPE_STRUCT;
        if (field.MetadataType() != METADATA_TYPE_STRUCT && !GetPayloadType(field.TypeName(), type)) {
            return PE_VALUE_NOT_SUPPORTED;
        }
        auto inner = std::make_unique<CComplexPayload>(type);
        for (IPayload* payload : made.List()) inner->AddField(payload);
        made.Release();
        outer->AddField(inner.release());
    }
    payloads.push_back(outer.release());
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
