#include "kes/configtools/readerwriters/kestext/common/textparser/CDelimiter.h"

namespace VemoKesConfigTools {

CParserError CDelimiter::Parse() {
    const char c = mpSource->PeekChar();
    if (c == '\n') return PE_DELIMITER_MISSING;
    if (mDelimiters.find(c) == std::string::npos) return PE_INVALID_DELIMITER;
    mFound = c;
    mpSource->Skip(1);
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
