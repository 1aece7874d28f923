// The shortest way from one list of lines to the other, as E. Myers has it ("An O(ND) Difference Algorithm
// and Its Variations", 1986), in the form that keeps one array of furthest points for each number of edits.
// Where two texts have too little in common for that, the lines between their equal ends are told as
// replaced.

#include "tool/output/UnifiedDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace kes::tool {

namespace {

constexpr std::size_t CONTEXT = 3;
constexpr std::ptrdiff_t MOST_EDITS = 2000;

using Lines = std::vector<std::string_view>;

/// Lines with their line ends, so that one that is missing at the end counts.
Lines Split(const std::string& text) {
    Lines lines;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::size_t length = end == std::string_view::npos ? rest.size() : end + 1;
        lines.push_back(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    return lines;
}

/// A stretch of lines that is taken out, and one that is put in for it.
struct Change {
    std::size_t oldFrom;
    std::size_t oldTo;
    std::size_t newFrom;
    std::size_t newTo;
};

class Differ {
public:
    Differ(const Lines& oldLines, const Lines& newLines) : mOld(oldLines), mNew(newLines) {}

    std::vector<Change> Run() {
        while (mHead < mOld.size() && mHead < mNew.size() && mOld[mHead] == mNew[mHead]) ++mHead;
        std::size_t tail = 0;
        while (tail < mOld.size() - mHead && tail < mNew.size() - mHead &&
               mOld[mOld.size() - 1 - tail] == mNew[mNew.size() - 1 - tail]) {
            ++tail;
        }
        mOldCount = static_cast<std::ptrdiff_t>(mOld.size() - mHead - tail);
        mNewCount = static_cast<std::ptrdiff_t>(mNew.size() - mHead - tail);
        if (mOldCount == 0 && mNewCount == 0) return {};
        const std::ptrdiff_t edits = FindEnd();
        if (edits < 0) return {MakeChange(0, mOldCount, 0, mNewCount)};
        return WalkBack(edits);
    }

private:
    bool Equal(std::ptrdiff_t x, std::ptrdiff_t y) const {
        return mOld[mHead + static_cast<std::size_t>(x)] == mNew[mHead + static_cast<std::size_t>(y)];
    }
    Change MakeChange(std::ptrdiff_t oldFrom, std::ptrdiff_t oldTo, std::ptrdiff_t newFrom,
                      std::ptrdiff_t newTo) const {
        const auto at = [&](std::ptrdiff_t line) { return mHead + static_cast<std::size_t>(line); };
        return {at(oldFrom), at(oldTo), at(newFrom), at(newTo)};
    }
    /// The furthest point on diagonal `k` after `edits` edits, before any equal lines are taken.
    std::ptrdiff_t Start(const std::vector<std::ptrdiff_t>& before, std::ptrdiff_t edits,
                         std::ptrdiff_t k) const {
        const auto at = [&](std::ptrdiff_t diagonal) {
            return before[static_cast<std::size_t>(diagonal + edits)];
        };
        return k == -edits || (k != edits && at(k - 1) < at(k + 1)) ? at(k + 1) : at(k - 1) + 1;
    }

    /// The number of edits, or -1 when there are too many.
    std::ptrdiff_t FindEnd() {
        std::vector<std::ptrdiff_t> furthest = {0, 0, 0};
        for (std::ptrdiff_t edits = 0; edits <= std::min(MOST_EDITS, mOldCount + mNewCount); ++edits) {
            mTrace.push_back(furthest);
            std::vector<std::ptrdiff_t> next(static_cast<std::size_t>(2 * edits + 3), 0);
            for (std::ptrdiff_t k = -edits; k <= edits; k += 2) {
                std::ptrdiff_t x = edits == 0 ? 0 : Start(furthest, edits, k);
                while (x < mOldCount && x - k < mNewCount && x - k >= 0 && Equal(x, x - k)) ++x;
                next[static_cast<std::size_t>(k + edits + 1)] = x;
                if (x >= mOldCount && x - k >= mNewCount) return edits;
            }
            furthest = std::move(next);
        }
        return -1;
    }

    std::vector<Change> WalkBack(std::ptrdiff_t edits) const {
        std::vector<Change> changes;
        std::ptrdiff_t x = mOldCount;
        std::ptrdiff_t y = mNewCount;
        for (; edits > 0; --edits) {
            const std::vector<std::ptrdiff_t>& before = mTrace[static_cast<std::size_t>(edits)];
            const std::ptrdiff_t k = x - y;
            const std::ptrdiff_t start = Start(before, edits, k);
            const bool down =
                k == -edits || (k != edits && before[static_cast<std::size_t>(k - 1 + edits)] <
                                                  before[static_cast<std::size_t>(k + 1 + edits)]);
            const std::ptrdiff_t startY = start - k;
            x = down ? start : start - 1;
            y = down ? startY - 1 : startY;
            const Change step = MakeChange(x, start, y, startY);
            if (!changes.empty() && changes.back().oldFrom == step.oldTo &&
                changes.back().newFrom == step.newTo) {
                changes.back().oldFrom = step.oldFrom;
                changes.back().newFrom = step.newFrom;
            } else {
                changes.push_back(step);
            }
        }
        std::reverse(changes.begin(), changes.end());
        return changes;
    }

    const Lines& mOld;
    const Lines& mNew;
    std::size_t mHead = 0;  ///< equal lines at the beginning
    std::ptrdiff_t mOldCount = 0;
    std::ptrdiff_t mNewCount = 0;
    std::vector<std::vector<std::ptrdiff_t>> mTrace;  ///< the furthest points before each number of edits
};

void AppendLine(std::string& diff, char mark, std::string_view line) {
    diff.append(1, mark).append(line);
    if (!line.ends_with('\n')) diff += "\n\\ No newline at end of file\n";
}

std::string Range(std::size_t from, std::size_t count) {
    // An empty stretch stands behind the line in front of it.
    return std::to_string(count == 0 ? from : from + 1) + (count == 1 ? "" : "," + std::to_string(count));
}

/// Appends the changes of one hunk, whose contexts touch.
void AppendHunk(std::string& diff, const Change* first, const Change* last, const Lines& oldLines,
                const Lines& newLines) {
    const std::size_t before = std::min(CONTEXT, first->oldFrom);
    const std::size_t after = std::min(CONTEXT, oldLines.size() - last->oldTo);
    const std::size_t oldFrom = first->oldFrom - before;
    const std::size_t newFrom = first->newFrom - before;
    diff += "@@ -" + Range(oldFrom, last->oldTo + after - oldFrom) + " +" +
            Range(newFrom, last->newTo + after - newFrom) + " @@\n";
    std::size_t line = oldFrom;
    for (const Change* change = first; change <= last; ++change) {
        for (; line < change->oldFrom; ++line) AppendLine(diff, ' ', oldLines[line]);
        for (; line < change->oldTo; ++line) AppendLine(diff, '-', oldLines[line]);
        for (std::size_t i = change->newFrom; i < change->newTo; ++i) AppendLine(diff, '+', newLines[i]);
    }
    for (; line < last->oldTo + after; ++line) AppendLine(diff, ' ', oldLines[line]);
}

}  // namespace

std::string UnifiedDiff(const std::string& oldName, const std::string& newName, const std::string& oldText,
                        const std::string& newText) {
    const Lines oldLines = Split(oldText);
    const Lines newLines = Split(newText);
    const std::vector<Change> changes = Differ(oldLines, newLines).Run();
    if (changes.empty()) return {};
    std::string diff = "--- " + oldName + "\n+++ " + newName + "\n";
    for (std::size_t first = 0; first < changes.size();) {
        std::size_t last = first;
        while (last + 1 < changes.size() && changes[last + 1].oldFrom - changes[last].oldTo <= 2 * CONTEXT)
            ++last;
        AppendHunk(diff, &changes[first], &changes[last], oldLines, newLines);
        first = last + 1;
    }
    return diff;
}

}  // namespace kes::tool
