#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"

#include <string>
#include <utility>

namespace VemoKesConfigTools {

/// The one character between key and value.
class CDelimiter final : public CTokenString {
public:
    CDelimiter(CTextReader* source, std::string delimiters)
        : CTokenString(source), mDelimiters(std::move(delimiters)) {}

    /// delimiter ::= one of the accepted characters
    /// `PE_DELIMITER_MISSING` at a newline, `PE_INVALID_DELIMITER` at another character; nothing is consumed
    /// then.
    CParserError Parse();
    /// The character that was read; 0 before.
    char Found() const { return mFound; }

private:
    std::string mDelimiters;
    char mFound = 0;
};

}  // namespace VemoKesConfigTools
