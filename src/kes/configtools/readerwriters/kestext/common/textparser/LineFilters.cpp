#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace VemoKesConfigTools {

bool gFiltersEnabled = true;

std::string_view CRunLimit::Trim(std::string_view run, char stop) {
    const char* const begin = run.data();
    const char* const end = begin + run.size();
    const std::less<> before;  // pointers into one text, but compared in a way that holds for any
    if (mFrom == nullptr || before(begin, mFrom) || before(mTo, begin)) {
        mFrom = begin;
        mTo = begin;
        mHit = false;
    }
    if (!mHit && before(mTo, end)) {
        const void* found = std::memchr(mTo, stop, static_cast<std::size_t>(end - mTo));
        mHit = found != nullptr;
        mTo = mHit ? static_cast<const char*>(found) : end;
    }
    return run.substr(0, static_cast<std::size_t>(std::min(mTo, end, before) - begin));
}

char CConcatLineFilter::GetChar() {
    SkipContinuations();
    return mpSource->GetChar();
}

std::string_view CConcatLineFilter::FindPlainRun() { return mLimit.Trim(mpSource->PlainRun(), '\\'); }

void CConcatLineFilter::SkipContinuations() {
    std::string_view next = mpSource->PlainRun();
    while (next.starts_with("\\\n")) {
        mpSource->Consume(2);
        next.remove_prefix(2);
    }
    if (next == "\\") mpSource->Skip(2);
}

CLineCommentFilter::CLineCommentFilter(CTextReader* source, std::string marker)
    : CLineFilter(source), mMarker(std::move(marker)) {}

char CLineCommentFilter::GetChar() {
    if (gFiltersEnabled && mpSource->PeekChar() == mMarker.front() &&
        mpSource->PeekString(mMarker.size()) == mMarker) {
        SkipToLineEnd();
    }
    return mpSource->GetChar();
}

std::string_view CLineCommentFilter::FindPlainRun() {
    const std::string_view run = mpSource->PlainRun();
    return gFiltersEnabled ? mLimit.Trim(run, mMarker.front()) : run;
}

void CLineCommentFilter::SkipToLineEnd() {
    while (!mpSource->Eof()) {
        const std::string_view run = mpSource->PlainRun();
        const std::size_t end = run.find('\n');
        mpSource->Consume(std::min(end, run.size()));
        if (end != std::string_view::npos || mpSource->PeekChar() == '\n') return;
        mpSource->GetChar();
    }
}

char CBlockCommentFilter::GetChar() {
    if (gFiltersEnabled) SkipComment();
    return mpSource->GetChar();
}

std::string_view CBlockCommentFilter::FindPlainRun() {
    const std::string_view run = mpSource->PlainRun();
    return gFiltersEnabled ? mLimit.Trim(run, '/') : run;
}

void CBlockCommentFilter::SkipComment() {
    const std::string_view run = mpSource->PlainRun();
    const bool opens = run.size() >= 2 ? run.starts_with("/*") : mpSource->PeekString(2) == "/*";
    if (!opens) return;
    const std::size_t from = mpSource->GetPosition().offset;
    if (from == mSkippedFrom) {
        mpSource->SetPosition(mSkippedTo);
        return;
    }
    mpSource->Skip(2);
    SkipToCommentEnd();
    mSkippedFrom = from;
    mSkippedTo = mpSource->GetPosition();
}

void CBlockCommentFilter::SkipToCommentEnd() {
    while (!mpSource->Eof()) {
        const std::string_view run = mpSource->PlainRun();
        if (const std::size_t end = run.find("*/"); end != std::string_view::npos) {
            mpSource->Consume(end + 2);
            return;
        }
        // A star at the end of the run may belong to an end that the source still has to put together.
        mpSource->Consume(run.ends_with('*') ? run.size() - 1 : run.size());
        if (mpSource->PeekString(2) == "*/") {
            mpSource->Skip(2);
            return;
        }
        mpSource->Skip(1);
    }
}

}  // namespace VemoKesConfigTools
