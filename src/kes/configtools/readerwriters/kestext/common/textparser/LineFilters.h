#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

#include <algorithm>
#include <string>

namespace VemoKesConfigTools {

/// While it is false, the two comment filters pass all characters through. Only the reading of a quoted
/// string changes it. One for the process, so that one text is read at a time.
extern bool gFiltersEnabled;

/// Remembers how far a text was searched for a character, so that each stretch of it is searched once. The
/// texts it is given are stretches of one text in memory.
class CRunLimit {
public:
    /// The run up to the first `stop`.
    std::string_view Trim(std::string_view run, char stop);

private:
    const char* mFrom = nullptr;  ///< no stop character in [mFrom, mTo)
    const char* mTo = nullptr;
    bool mHit = false;  ///< mTo points at a stop character
};

/// What all filters share: the position is that of the reader at the bottom. The plain run is found once and
/// then served from memory for as long as the position moves within it.
class CLineFilter : public CTextReader {
public:
    explicit CLineFilter(CTextReader* source)
        : mpSource(source), mpBottom(source->Bottom()), mAt(mpBottom->At()) {}

    bool Eof() final { return mAt.eof; }
    Position GetPosition() final { return mAt; }
    void SetPosition(Position position) final { mpBottom->SetPosition(position); }
    std::string_view PlainRun() final {
        if (mAt.offset != mRunOffset || mAt.eof || mRunFiltered != gFiltersEnabled) {
            mRun = FindPlainRun();
            mRunOffset = mAt.offset;
            mRunFiltered = gFiltersEnabled;
        }
        return mRun;
    }
    void Consume(std::size_t n) final {
        mpBottom->Consume(n);
        mRun.remove_prefix(std::min(n, mRun.size()));
        mRunOffset += n;
    }
    CTextReader* Bottom() final { return mpBottom; }
    const Position& At() const final { return mAt; }

protected:
    /// The part of the source's plain run in which this filter has nothing to do.
    virtual std::string_view FindPlainRun() = 0;

    CTextReader* mpSource;
    CRunLimit mLimit;

private:
    CTextReader* mpBottom;
    const Position& mAt;
    std::string_view mRun;  ///< the plain run at `mRunOffset`
    std::size_t mRunOffset = static_cast<std::size_t>(-1);
    bool mRunFiltered = true;  ///< what `gFiltersEnabled` was when it was found
};

/// Joins lines: a backslash directly followed by a newline vanishes with it, any number in a row. A backslash
/// that is the last character of the text vanishes too.
class CConcatLineFilter final : public CLineFilter {
public:
    using CLineFilter::CLineFilter;
    char GetChar() override;

private:
    std::string_view FindPlainRun() override;
    void SkipContinuations();
};

/// Removes everything from the marker up to the newline, which stays.
class CLineCommentFilter final : public CLineFilter {
public:
    /// The marker is not empty.
    CLineCommentFilter(CTextReader* source, std::string marker);
    char GetChar() override;

private:
    std::string_view FindPlainRun() override;
    void SkipToLineEnd();

    std::string mMarker;
};

/// Removes everything from "/*" to the first "*/", newlines included; a comment that is never closed runs to
/// the end of the text. The character behind a comment is delivered without a further look.
class CBlockCommentFilter final : public CLineFilter {
public:
    using CLineFilter::CLineFilter;
    char GetChar() override;

private:
    std::string_view FindPlainRun() override;
    void SkipComment();
    void SkipToCommentEnd();

    // The last comment that was skipped: a look ahead in front of it need not walk through it again.
    std::size_t mSkippedFrom = static_cast<std::size_t>(-1);
    Position mSkippedTo;
};

}  // namespace VemoKesConfigTools
