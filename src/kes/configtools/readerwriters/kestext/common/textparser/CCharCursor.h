#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

#include <string_view>

namespace VemoKesConfigTools {

/// Walks over a reader character by character at the cost of walking over a text in memory. The reader's own
/// position follows when the cursor goes; until then nobody else may move it.
class CCharCursor {
public:
    explicit CCharCursor(CTextReader& source) : mSource(source), mRun(source.PlainRun()) {}
    CCharCursor(const CCharCursor&) = delete;
    CCharCursor& operator=(const CCharCursor&) = delete;
    ~CCharCursor() { Flush(); }

    /// The next character as 0 to 255, or -1 at the end of the text.
    int Peek() {
        if (mUsed < mRun.size()) return static_cast<unsigned char>(mRun[mUsed]);
        return PeekBeyondRun();
    }
    /// Consumes the character that `Peek` gave.
    void Skip() {
        if (mUsed < mRun.size()) {
            ++mUsed;
            return;
        }
        mSource.GetChar();
        mRun = mSource.PlainRun();
        mUsed = 0;
    }

private:
    void Flush() {
        if (mUsed != 0) mSource.Consume(mUsed);
        mUsed = 0;
    }
    int PeekBeyondRun() {
        Flush();
        mRun = mSource.PlainRun();
        if (!mRun.empty()) return static_cast<unsigned char>(mRun.front());
        const char c = mSource.PeekChar();
        return c == '\xFF' && mSource.AtEnd() ? -1 : static_cast<unsigned char>(c);
    }

    CTextReader& mSource;
    std::string_view mRun;
    std::size_t mUsed = 0;
};

}  // namespace VemoKesConfigTools
