#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesName.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CompositeValues.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CEnum.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/COctetString.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "model/CKesContext.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <memory>

namespace VemoKesConfigTools {

namespace {

struct TypeName {
    std::string_view name;
    KEYTYPE type;
};

constexpr TypeName INTEGER_TYPES[] = {
    {STR_UINT8, KT_UINT8},   {STR_UINT16, KT_UINT16}, {STR_UINT32, KT_UINT32},
    {STR_UINT64, KT_UINT64}, {STR_INT8, KT_INT8},     {STR_INT16, KT_INT16},
    {STR_INT32, KT_INT32},   {STR_INT64, KT_INT64},   {STR_INTEGER, KT_INTEGER},
};

constexpr CCharSet KEYWORD_STARTS("VFSDvfsd");

}  // namespace

const std::array<CKesParser::Keyword, 5> CKesParser::KEYWORDS = {{
    {"version", &CKesParser::DecodeVersion, {}},
    {"file", &CKesParser::DecodeFile, STR_STORE},
    {"subsystem", &CKesParser::DecodeSubsystem, STR_SUBSYSTEM_TYPE},
    {"device", &CKesParser::DecodeDevice, STR_DEVICE},
    {"store", &CKesParser::DecodeStore, STR_STORE},
}};

CDelimiter* CKesParser::GetDelimiter() { return new CDelimiter(mpSource, "="); }

CName* CKesParser::GetName() {
    if (mpParseContext->mInfo.mSubsystem == -1 && mpParseContext->mPrefix.mSubsystem == -1) return nullptr;
    return new CKesName(mpSource, mpParseContext);
}

CValue* CKesParser::GetValue(const std::string& name) {
    KEYTYPE type = KT_UNKNOWN;
    return KeyType(name, type).Ok() ? GetValue(type) : nullptr;
}

CValue* CKesParser::GetValue(KEYTYPE type) {
    switch (type) {
        case KT_UNKNOWN:
            return nullptr;
        case KT_OCTET_STRING:
            return new COctetString(mpSource, mpParseContext);
        case KT_ENUM_VALUE:
        case KT_ENUM:
            return new CEnum(mpSource, mpParseContext);
        case KT_UINT8:
            return new CInteger<std::uint8_t>(mpSource, mpParseContext);
        case KT_UINT16:
            return new CInteger<std::uint16_t>(mpSource, mpParseContext);
        case KT_UINT32:
            return new CInteger<std::uint32_t>(mpSource, mpParseContext);
        case KT_UINT64:
            return new CInteger<std::uint64_t>(mpSource, mpParseContext);
        case KT_INT8:
            return new CInteger<std::int8_t>(mpSource, mpParseContext);
        case KT_INT16:
            return new CInteger<std::int16_t>(mpSource, mpParseContext);
        case KT_INT32:
            return new CInteger<std::int32_t>(mpSource, mpParseContext);
        case KT_INT64:
        case KT_INTEGER:
            return new CInteger<std::int64_t>(mpSource, mpParseContext);
        case KT_STRUCT:
            return new CStruct(mpSource, mpParseContext);
        case KT_ARRAY:
            return new CArray(mpSource, mpParseContext);
        case KT_MAC:
            if (COctetString::Is(*mpSource)) return new COctetString(mpSource, mpParseContext);
            return new COctetStringMAC(mpSource, mpParseContext);
        case KT_QUOTED:
            if (COctetString::Is(*mpSource)) return new COctetString(mpSource, mpParseContext);
            return new COctetStringQuote(mpSource, mpParseContext);
        case KT_RAW:
            return new CRaw(mpSource, mpParseContext);
    }
    return nullptr;
}

KEYTYPE CKesParser::KeyType(const IMetadata& metadata, bool checkArray) {
    return CRaw::Is(*mpSource) ? KT_RAW : TypeOf(metadata, checkArray);
}

KEYTYPE CKesParser::TypeOf(const IMetadata& metadata, bool checkArray) {
    if (!metadata.IsValid()) return KT_UNKNOWN;
    if (checkArray && metadata.IsArray()) return KT_ARRAY;
    if (metadata.MetadataType() == METADATA_TYPE_STRUCT) return KT_STRUCT;
    const std::string type = metadata.TypeName();
    for (const TypeName& known : INTEGER_TYPES) {
        if (type == known.name) return known.type;
    }
    if (type == STR_OCTET_STRING) {
        const std::string format = metadata.Format();
        if (format == STR_UNICODE_STRING) return KT_QUOTED;
        if (format == STR_MACADDR_STRING) return KT_MAC;
        if (format.empty()) return KT_OCTET_STRING;
    }
    return KT_ENUM;
}

CParserError CKesParser::KeyType(const std::string& name, KEYTYPE& type) {
    type = KT_RAW;
    if (CRaw::Is(*mpSource)) return PE_NONE;
    type = KeyType(mpParseContext->ByName(name), true);
    return type == KT_UNKNOWN ? PE_NO_KEY_NUMBER : PE_NONE;
}

std::string CKesParser::GetErrorText(CParserError error) { return std::string(ParserErrorText(error.mCode)); }

CParserError CKesParser::ParseLine() {
    KESTEXT_TRACE(3, "CKesParser::ParseLine", "CKesParser - next line: %s", mpSource->PeekLine().c_str());
    if (CParserError result; mpPlain && ParsePlainLines(result)) return result;
    if (KEYWORD_STARTS.Holds(static_cast<unsigned char>(mpSource->PeekChar()))) {
        for (const Keyword& keyword : KEYWORDS) {
            if (MatchesWord(keyword.word)) return ParseKeywordLine(keyword);
        }
    }
    return mpParseContext->mpConfigContext->HasPlace() ? CParser::ParseLine() : IncompletePlace();
}

bool CKesParser::IsKeyword(std::string_view word) {
    return KEYWORD_STARTS.Holds(static_cast<unsigned char>(word.front())) &&
           std::ranges::any_of(
               KEYWORDS, [&](const Keyword& keyword) { return EqualsIgnoringCase(keyword.word, word); });
}

CParserError CKesParser::ParseKeywordLine(const Keyword& keyword) {
    CKesContext& context = *mpParseContext->mpConfigContext;
    CParserError result = (this->*keyword.decode)();
    if (!result.Ok()) {
        // No key may land in a place that the text did not name.
        if (!keyword.tag.empty()) context.SetTag(keyword.tag);
        return result;
    }
    if (!keyword.tag.empty() && context.HasPlace()) result = SetSubsystem();
    return result.Ok() ? CheckEOL() : result;
}

CParserError CKesParser::IncompletePlace() {
    const CKesContext& context = *mpParseContext->mpConfigContext;
    const char* missing = "store";
    CParserError result = PE_INVALID_STORE;
    if (!context.HasSubsystemType()) {
        missing = "subsystem";
        result = PE_UNKNOWN_SUBSYSTEM;
    } else if (!context.HasDevice()) {
        missing = "device";
        result = PE_UNKNOWN_DEVICE;
    }
    KESTEXT_TRACE(3, "CKesParser::ParseLine", "%s not found in ktf file for %s", missing,
                  mpSource->PeekLine().c_str());
    return result;
}

bool CKesParser::IsKeywordLine(const std::string& keyword) { return MatchesWord(keyword); }

bool CKesParser::MatchesWord(std::string_view keyword) {
    const auto matches = [&](std::string_view text) {
        if (!EqualsIgnoringCase(text.substr(0, keyword.size()), keyword)) return false;
        return text.size() == keyword.size() ||
               !NAME_CHARS.Holds(static_cast<unsigned char>(text[keyword.size()]));
    };
    const std::string_view run = mpSource->PlainRun();
    return run.size() > keyword.size() ? matches(run) : matches(mpSource->PeekString(keyword.size() + 1));
}

}  // namespace VemoKesConfigTools
