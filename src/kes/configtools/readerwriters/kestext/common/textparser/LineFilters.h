#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

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

/// What all filters share: the position is that of the source.
class CLineFilter : public CTextReader {
public:
    explicit CLineFilter(CTextReader* source) : mpSource(source) {}

    bool Eof() override { return mpSource->Eof(); }
    Position GetPosition() override { return mpSource->GetPosition(); }
    void SetPosition(Position position) override { mpSource->SetPosition(position); }
    void Consume(std::size_t n) override { mpSource->Consume(n); }

protected:
    CTextReader* mpSource;
    CRunLimit mLimit;
};

/// Joins lines: a backslash directly followed by a newline vanishes with it, any number in a row. A backslash
/// that is the last character of the text vanishes too.
class CConcatLineFilter final : public CLineFilter {
public:
    using CLineFilter::CLineFilter;
    char GetChar() override;
    std::string_view PlainRun() override;

private:
    void SkipContinuations();
};

/// Removes everything from the marker up to the newline, which stays.
class CLineCommentFilter final : public CLineFilter {
public:
    /// The marker is not empty.
    CLineCommentFilter(CTextReader* source, std::string marker);
    char GetChar() override;
    std::string_view PlainRun() override;

private:
    void SkipToLineEnd();

    std::string mMarker;
};

/// Removes everything from "/*" to the first "*/", newlines included; a comment that is never closed runs to
/// the end of the text. The character behind a comment is delivered without a further look.
class CBlockCommentFilter final : public CLineFilter {
public:
    using CLineFilter::CLineFilter;
    char GetChar() override;
    std::string_view PlainRun() override;

private:
    void SkipComment();
    void SkipToCommentEnd();

    // The last comment that was skipped: a look ahead in front of it need not walk through it again.
    std::size_t mSkippedFrom = static_cast<std::size_t>(-1);
    Position mSkippedTo;
};

}  // namespace VemoKesConfigTools
