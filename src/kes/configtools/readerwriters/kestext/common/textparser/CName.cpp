#include "kes/configtools/readerwriters/kestext/common/textparser/CName.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"

namespace VemoKesConfigTools {

CParserError CName::Parse() {
    if (CInteger<std::uint32_t>::Is(*mpSource)) {
        CInteger<std::uint32_t> number(mpSource, mpParseContext);
        CParserError result = number.Parse();
        if (result.Ok()) mId = number.mValue;
        KESTEXT_TRACE(2, "CName::Parse", "0x%u", mId);
        return result;
    }
    mKeyName = ReadUntilNotMatch(NAME_CHARS);
    KESTEXT_TRACE(2, "CName::Parse", "%s", mKeyName.c_str());
    if (mKeyName.empty()) return PE_NAME_REQUIRED;
    return PE_NONE;
}

CParserError CName::ReadIndexValue(std::uint32_t& value) {
    if (mpSource->PeekChar() != '.') return PE_END_OF_DATA;
    mpSource->Skip(1);
    std::uint16_t count = 0;
    return ReadDecimalNumber<std::uint32_t>(*mpSource, value, count);
}

}  // namespace VemoKesConfigTools
