#include "kes/configtools/readerwriters/kestext/common/kesparser/CompositeValues.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"

namespace VemoKesConfigTools {

CParserError CArray::Parse() { return Parse(mpParseContext->ByName(mpMetadata->Name()), mpParseContext); }

CParserError CArray::Parse(const IMetadata& metadata, CParseContext* context) {
    CParserError result;
    KESTEXT_SENTRY_RETURNING("CArray::Parse", result);
    if (mpSource->GetChar() != '{') return result = PE_MISSING_OPENING_BRACE;
    const auto lo = static_cast<std::uint64_t>(metadata.ArrayMinLength());
    const auto hi = static_cast<std::uint64_t>(metadata.ArrayMaxLength());
    std::uint64_t count = 0;
    for (;;) {
        SkipWhitespace();
        if (result = ParseItem(metadata, context); !result.Ok()) return result;
        // Items beyond the limit are counted for the message; a line of millions of them takes no memory.
        if (++count > hi) mItems.pop_back();
        SkipWhitespace();
        if (mpSource->PeekChar() == '}') break;
        const char comma = mpSource->GetChar();
        if (mpSource->Eof()) return result = PE_MISSING_CLOSING_BRACE;
        if (comma != ',') return result = PE_MISSING_COMMA;
    }
    mpSource->Skip(1);

    if (count < lo || count > hi) {
        const std::string range =
            lo == hi ? std::to_string(hi) : "between " + std::to_string(lo) + " and " + std::to_string(hi);
        result = {PE_WRONG_ARRAY_LENGTH,
                  "must have " + range + " items. " + std::to_string(count) + " found."};
    }
    return result;
}

CParserError CArray::ParseItem(const IMetadata& metadata, CParseContext* context) {
    CKesParser& parser = *context->mpParser;
    std::unique_ptr<CValue> item(parser.GetValue(parser.KeyType(metadata, /*checkArray=*/false)));
    if (!item) return PE_VALUE_NOT_SUPPORTED;
    item->mpMetadata = &metadata;
    auto* structure = dynamic_cast<CStruct*>(item.get());
    CParserError result = structure != nullptr ? structure->Parse(metadata, context) : item->Parse();
    if (result.Ok()) mItems.push_back(std::move(item));
    return result;
}

CParserError CArray::Action(std::vector<IPayload*>& payloads, CParseContext* context,
                            const IMetadata& metadata) {
    for (const std::unique_ptr<CValue>& item : mItems) {
        if (CParserError result = item->Action(payloads, context, metadata); !result.Ok()) return result;
    }
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
