#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// An enumerator, by name or by number.
class CEnum final : public CValue {
public:
    using CValue::CValue;

    /// Whether a character of an enumerator's name comes next.
    static bool Is(CTextReader& source);
    /// enum ::= integer of 16 bits | name of letters, digits, "_" and "-"
    CParserError Parse() override;
    /// Finds the enumerator in the metadata. The payload has the name as the metadata spells it.
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;

private:
    std::string mName;
    std::uint16_t mNumber = 0;
};

/// Words of four hexadecimal digits. No type of key leads to it.
class CHexArray final : public CTokenString {
public:
    CHexArray(CTextReader* source, CParseContext* context) : CTokenString(source), mpParseContext(context) {}

    static bool Is(CTextReader& /*source*/) { return true; }
    /// words ::= {hex hex hex hex blank}
    CParserError Parse();
    const std::vector<std::uint16_t>& Words() const { return mWords; }

private:
    CParseContext* mpParseContext;
    std::vector<std::uint16_t> mWords;
};

}  // namespace VemoKesConfigTools
