#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The payload of a byte string whose length the metadata allows. `unit` is what is counted, in words.
CParserError StringAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, std::string text,
                          const char* unit);
inline constexpr const char* UNIT_OCTETS = " values.";
inline constexpr const char* UNIT_CHARACTERS = " characters.";

/// Octets in brackets. Also the base of the other way to write octets.
class COctetString : public CValue {
public:
    using CValue::CValue;

    /// Whether "[" comes next.
    static bool Is(CTextReader& source) { return source.PeekChar() == '['; }
    /// octets ::= "[" {blank} {hex hex {blank}} "]"
    CParserError Parse() override;
    /// Holds the number of octets against the metadata's range and makes one string payload.
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;

    const std::vector<std::uint8_t>& Octets() const { return mOctets; }

protected:
    /// Reads one octet of two digits. `PE_INVALID_OCTET` whatever is wrong.
    CParserError ReadOctet();

    std::vector<std::uint8_t> mOctets;
};

/// Octets as a MAC address is written.
class COctetStringMAC final : public COctetString {
public:
    using COctetString::COctetString;

    /// Whether the rest of the line holds a ":" or "-".
    static bool Is(CTextReader& source);
    /// mac ::= hex hex {separator hex hex}     separator ::= ":" | "-", the same throughout
    CParserError Parse() override;
};

/// Octets as quoted text.
class COctetStringQuote final : public CValue {
public:
    using CValue::CValue;

    /// Whether a double quote comes next.
    static bool Is(CTextReader& source) { return source.PeekChar() == '"'; }
    /// quoted ::= '"' {character | escape} '"'
    /// escape ::= "\\" ('"' | "\\" | "0" | "n" | "r" | "u" hex hex hex hex)
    /// Comments are plain text between the quotes.
    CParserError Parse() override;
    /// Holds the number of bytes against the metadata's range and makes one string payload.
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;

    const std::string& Text() const { return mText; }

private:
    CParserError ReadTextString();
    CParserError ReadUnicodeEscape();

    std::string mText;
};

}  // namespace VemoKesConfigTools
