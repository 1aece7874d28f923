#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/CCharCursor.h"

namespace VemoKesConfigTools {

bool CTokenString::SkipWhitespace() {
    CCharCursor cursor(*mpSource);
    bool any = false;
    while (WHITESPACE_CHARS.Holds(cursor.Peek())) {
        cursor.Skip();
        any = true;
    }
    return any;
}

std::string CTokenString::ReadUntilNotMatch(const CCharSet& set) {
    std::string text;
    CCharCursor cursor(*mpSource);
    for (int c = cursor.Peek(); set.Holds(c); c = cursor.Peek()) {
        text.push_back(static_cast<char>(c));
        cursor.Skip();
    }
    return text;
}

std::string CTokenString::ReadUntilMatch(const CCharSet& set) {
    std::string text;
    CCharCursor cursor(*mpSource);
    for (int c = cursor.Peek(); !set.Holds(c); c = cursor.Peek()) {
        cursor.Skip();
        if (c < 0) break;
        text.push_back(static_cast<char>(c));
    }
    return text;
}

bool StartsHexNumber(CTextReader& source) {
    const std::string_view run = source.PlainRun();
    const auto matches = [](std::string_view text) {
        return text.size() >= 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
    };
    return run.size() >= 2 ? matches(run) : matches(source.PeekString(2));
}

}  // namespace VemoKesConfigTools
