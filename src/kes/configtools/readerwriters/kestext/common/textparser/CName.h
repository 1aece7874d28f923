#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CParseContext.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// A key: a number or a name.
class CName : public CTokenString {
public:
    CName(CTextReader* source, CParseContext* context) : CTokenString(source), mpParseContext(context) {}

    /// key ::= integer of 32 bits | name of letters, digits and "_"
    /// A digit as first character makes it a number. Sets exactly one of `mId` and `mKeyName`.
    virtual CParserError Parse();
    /// Completes whichever of number and name is missing.
    virtual CParserError Action() = 0;

    /// index ::= "." decimal
    /// `PE_END_OF_DATA` when no index follows.
    CParserError ReadIndexValue(std::uint32_t& value);

    std::uint32_t mId = 0;
    std::string mKeyName;
    std::vector<std::uint32_t> mIndices;
    CParseContext* mpParseContext;
};

}  // namespace VemoKesConfigTools
