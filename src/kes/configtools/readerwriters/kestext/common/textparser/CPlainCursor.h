#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CCharSet.h"

#include <cstring>
#include <string_view>

namespace VemoKesConfigTools {

/// Walks over a text in memory, of which no character is special.
class CPlainCursor {
public:
    explicit CPlainCursor(std::string_view text) : mAt(text.data()), mEnd(text.data() + text.size()) {}

    /// The next character as 0 to 255, or -1 at the end of the text.
    int Peek() const { return mAt == mEnd ? -1 : static_cast<unsigned char>(*mAt); }
    /// Consumes the character that `Peek` gave.
    void Skip() { ++mAt; }
    /// Consumes the character if it comes next; whether it did.
    bool Take(char c) {
        if (Peek() != static_cast<unsigned char>(c)) return false;
        ++mAt;
        return true;
    }
    /// Consumes "0x" or "0X" if it comes next; whether it did.
    bool TakeHexPrefix() {
        if (mEnd - mAt < 2 || mAt[0] != '0' || (mAt[1] | 0x20) != 'x') return false;
        mAt += 2;
        return true;
    }
    /// Consumes the longest run of characters from the set.
    std::string_view TakeAll(const CCharSet& set) {
        const char* const begin = mAt;
        while (set.Holds(Peek())) ++mAt;
        return {begin, static_cast<std::size_t>(mAt - begin)};
    }
    /// Consumes the characters up to the first from the set, or up to the end of the text.
    std::string_view TakeUntil(const CCharSet& set) {
        const char* const begin = mAt;
        while (mAt != mEnd && !set.Holds(Peek())) ++mAt;
        return {begin, static_cast<std::size_t>(mAt - begin)};
    }
    void SkipBlanks() { TakeAll(WHITESPACE_CHARS); }
    /// What is left of the line, without its newline; all of the text when it has none.
    std::string_view RestOfLine() const {
        const auto left = static_cast<std::size_t>(mEnd - mAt);
        const void* const end = left == 0 ? nullptr : std::memchr(mAt, '\n', left);
        return {mAt, end == nullptr ? left : static_cast<std::size_t>(static_cast<const char*>(end) - mAt)};
    }

    const char* At() const { return mAt; }
    void MoveTo(const char* at) { mAt = at; }

private:
    const char* mAt;
    const char* mEnd;
};

}  // namespace VemoKesConfigTools
