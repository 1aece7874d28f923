#include "kes/configtools/readerwriters/kestext/common/textparser/COctetString.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "model/Payloads.h"
#include "utf8.h"

#include <memory>
#include <utility>

namespace VemoKesConfigTools {

CParserError StringAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, std::string text,
                          const char* unit) {
    if (!metadata.IsValid()) return PE_UNKNOWN_NAME;
    const std::int64_t lo = metadata.Min();
    const std::int64_t hi = metadata.Max();
    if (std::cmp_less(text.size(), lo) || std::cmp_greater(text.size(), hi)) {
        const std::string range =
            lo == hi ? std::to_string(hi) : "between " + std::to_string(lo) + " and " + std::to_string(hi);
        return {PE_INVALID_LENGTH, "must have " + range + unit};
    }
    auto payload = std::make_unique<CStringPayload>(std::move(text), true);
    payloads.push_back(payload.get());
    static_cast<void>(payload.release());
    return PE_NONE;
}

CParserError COctetString::ReadOctet() {
    std::uint8_t octet = 0;
    if (!ReadHexNumber<std::uint8_t>(*mpSource, octet, 2).Ok()) return PE_INVALID_OCTET;
    KESTEXT_TRACE(2, "COctetString::Parse", "Octet %u", static_cast<unsigned>(octet));
    mOctets.push_back(octet);
    return PE_NONE;
}

CParserError COctetString::Parse() {
    if (mpSource->GetChar() != '[') return PE_MISSING_OPEN_BRACKET;
    for (;;) {
        SkipWhitespace();
        const char c = mpSource->PeekChar();
        if (c == ']') {
            mpSource->Skip(1);
            return PE_NONE;
        }
        if (c == '\n' || mpSource->Eof()) return PE_MISSING_CLOSING_BRACKET;
        if (CParserError result = ReadOctet(); !result.Ok()) return result;
    }
}

CParserError COctetString::Action(std::vector<IPayload*>& payloads, CParseContext* /*context*/,
                                  const IMetadata& metadata) {
    return StringAction(payloads, metadata, std::string(mOctets.begin(), mOctets.end()), UNIT_OCTETS);
}

bool COctetStringMAC::Is(CTextReader& source) {
    return source.PeekLine().find_first_of(":-") != std::string::npos;
}

CParserError COctetStringMAC::Parse() {
    static constexpr CCharSet SPACES(" \t\n\v\f\r");
    char separator = 0;
    for (std::size_t i = 0; !SPACES.Holds(static_cast<unsigned char>(mpSource->PeekChar())); ++i) {
        if (i != 0) {
            const char d = mpSource->GetChar();
            if (mpSource->Eof()) return PE_NONE;
            if (i == 1 && (d == ':' || d == '-')) separator = d;
            if (d != separator || separator == 0) return PE_MAC_DELIMITER_MISSING;
        }
        if (CParserError result = ReadOctet(); !result.Ok()) return result;
    }
    return PE_NONE;
}

CParserError COctetStringQuote::Parse() {
    if (mpSource->GetChar() != '"') return PE_MISSING_QUOTE;
    struct FiltersOff {
        FiltersOff() { gFiltersEnabled = false; }
        FiltersOff(const FiltersOff&) = delete;
        FiltersOff& operator=(const FiltersOff&) = delete;
        ~FiltersOff() { gFiltersEnabled = true; }
    } const filtersOff;
    CParserError result = ReadTextString();
    if (result.Ok()) KESTEXT_TRACE(2, "COctetStringQuote::Parse", "Octet string (quoted): %s", mText.c_str());
    return result;
}

CParserError COctetStringQuote::ReadTextString() {
    static constexpr CCharSet SPECIAL("\"\\\n");
    mText.clear();
    CParserError result;
    for (;;) {
        const std::string_view run = mpSource->PlainRun();
        std::size_t plain = 0;
        while (plain < run.size() && !SPECIAL.Holds(static_cast<unsigned char>(run[plain]))) ++plain;
        mText.append(run.substr(0, plain));
        mpSource->Consume(plain);

        const char c = mpSource->GetChar();
        if (mpSource->Eof()) return PE_MISSING_QUOTE;
        if (c == '"') return result;
        if (c == '\n') return PE_MISSING_QUOTE;
        if (c != '\\') {
            mText.push_back(c);
            continue;
        }
        const char escape = mpSource->GetChar();
        if (mpSource->Eof()) return PE_MISSING_QUOTE;
        switch (escape) {
            case '"':
            case '\\':
                mText.push_back(escape);
                break;
            case '0':
                mText.push_back('\0');
                break;
            case 'n':
                mText.push_back('\n');
                break;
            case 'r':
                mText.push_back('\r');
                break;
            case 'u':
                // The reading goes on to the closing quote, and a later good escape does not heal this one.
                if (CParserError unicode = ReadUnicodeEscape(); !unicode.Ok()) result = std::move(unicode);
                break;
            default:
                return PE_UNKNOWN_ESCAPE;
        }
        if (escape != 'u')
            KESTEXT_TRACE(2, "COctetStringQuote::ReadTextString", "Found \\%c in string", escape);
    }
}

CParserError COctetStringQuote::ReadUnicodeEscape() {
    constexpr std::uint16_t SURROGATES_FIRST = 0xD800;
    constexpr std::uint16_t SURROGATES_LAST = 0xDFFF;
    constexpr std::uint16_t REPLACEMENT = 0xFFFD;
    std::uint16_t unit = 0;
    if (!ReadHexNumber<std::uint16_t>(*mpSource, unit, 4).Ok()) return PE_NOT_4_DIGIT_HEX;
    KESTEXT_TRACE(2, "COctetStringQuote::ReadTextString", "Found unicode %04x in string",
                  static_cast<unsigned>(unit));
    // Each escape stands for itself: two of them never make one character of a surrogate pair.
    if (unit >= SURROGATES_FIRST && unit <= SURROGATES_LAST) unit = REPLACEMENT;
    if (unit != 0) utf8::append(static_cast<char32_t>(unit), std::back_inserter(mText));
    return PE_NONE;
}

CParserError COctetStringQuote::Action(std::vector<IPayload*>& payloads, CParseContext* /*context*/,
                                       const IMetadata& metadata) {
    return StringAction(payloads, metadata, mText, UNIT_CHARACTERS);
}

}  // namespace VemoKesConfigTools
