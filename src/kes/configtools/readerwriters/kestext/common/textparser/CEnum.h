#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

/// The payload of the enumerator of this name, without regard to case, or, with an empty name, of this
/// number. It has the name as the metadata spells it.
CParserError EnumAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, std::string_view name,
                        std::uint16_t number);

/// An enumerator, by name or by number.
class CEnum final : public CValue {
public:
    using CValue::CValue;

    /// Whether a character of an enumerator's name comes next.
    static bool Is(CTextReader& source);
    /// enum ::= integer of 16 bits | name of letters, digits, "_" and "-"
    CParserError Parse() override;
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
