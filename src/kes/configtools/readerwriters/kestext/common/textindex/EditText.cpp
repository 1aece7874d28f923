#include "kes/configtools/readerwriters/kestext/common/textindex/EditText.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <tuple>

namespace VemoKesConfigTools {

namespace {

constexpr std::string_view BLANKS = " \t";
constexpr std::string_view LINE_ENDS = "\r\n";

/// How the text ends its lines: as it ends its first.
std::string LineEndOf(std::string_view text) {
    const std::size_t at = text.find_first_of(LINE_ENDS);
    if (at == std::string_view::npos) return "\n";
    const bool isPair =
        text[at] == '\r' && at + 1 < text.size() && LINE_ENDS.find(text[at + 1]) != std::string_view::npos;
    return std::string(text.substr(at, isPair ? 2 : 1));
}

struct Replacement {
    TextRange range;
    std::string text;
};

class Editor {
public:
    Editor(const CTextIndex& index, const std::vector<TextChange>& changes)
        : mIndex(index), mText(index.Text()), mLineEnd(LineEndOf(mText)) {
        for (const TextChange& change : changes) {
            mKeys[KeyOf(change.place, change.psid, change.indices)];
            mPlaceEnds[change.place];
        }
        FindLines();
        for (const TextChange& change : changes) Apply(change);
    }

    std::string Result() {
        std::ranges::stable_sort(mReplacements, {}, [](const Replacement& r) { return r.range.begin; });
        std::string result;
        std::size_t done = 0;
        for (const Replacement& replacement : mReplacements) {
            result.append(mText.substr(done, replacement.range.begin - done)).append(replacement.text);
            done = replacement.range.end;
        }
        result.append(mText.substr(done));
        AppendNewPlaces(result);
        return result;
    }

private:
    using Key = std::tuple<TextPlace, std::uint32_t, std::vector<std::uint32_t>>;
    static Key KeyOf(const TextPlace& place, std::uint32_t psid, const std::vector<std::uint32_t>& indices) {
        return {place, psid, indices};
    }

    /// One walk for all changes.
    void FindLines() {
        for (const TextLine& line : mIndex.Lines()) {
            const auto place = mPlaceEnds.find(line.place);
            if (place == mPlaceEnds.end()) continue;
            const bool isKey =
                line.effect == TextLine::Effect::Sets || line.effect == TextLine::Effect::Removes;
            // A failed line says nothing of where the lines behind it lie.
            if ((isKey && !line.isStray) ||
                (line.error == 0 && line.key.IsEmpty() && place->second == nullptr)) {
                place->second = &line;
            }
            const auto key = mKeys.find(KeyOf(line.place, line.psid, line.indices));
            if (key != mKeys.end()) key->second.Take(line);
        }
    }

    void Apply(const TextChange& change) {
        const Found& found = mKeys.at(KeyOf(change.place, change.psid, change.indices));
        if (change.isRemoval) {
            for (const TextLine* line : found.lines) RemoveLine(*line);
        } else if (found.isThere) {
            mReplacements.push_back({found.lines.back()->value, change.value});
        } else if (found.refused != nullptr) {
            mReplacements.push_back({found.refused->value, change.value});
        } else if (const TextLine* last = mPlaceEnds.at(change.place)) {
            AddLine(*last, change);
        } else {
            mNewPlaces.push_back(&change);
        }
    }

    /// Whatever else stands in front of the line, a comment that ends there, stays with the end of the line.
    void RemoveLine(const TextLine& line) {
        TextRange range = line.all;
        const std::size_t start = StartOfBlanks(range.begin);
        if (IsLineStart(start)) {
            range.begin = start;
        } else {
            range.end = mText.find_last_not_of(LINE_ENDS, range.end - 1) + 1;
        }
        mReplacements.push_back({range, {}});
    }

    void AddLine(const TextLine& last, const TextChange& change) {
        std::string text;
        const std::size_t end = last.all.end;
        if (!IsLineStart(end)) text = Break(mText.substr(0, end));
        const std::size_t start = StartOfBlanks(last.all.begin);
        const bool isKey = !last.key.IsEmpty();
        if (isKey && IsLineStart(start)) text.append(mText.substr(start, last.all.begin - start));
        if (last.isPrefixed) text.append(mText.substr(last.all.begin, last.key.begin - last.all.begin));
        const std::string_view between =
            isKey ? mText.substr(last.key.end, last.value.begin - last.key.end) : std::string_view();
        text.append(change.key).append(between == "=" ? "=" : " = ").append(change.value);
        if (IsLineStart(end)) text.append(mLineEnd);
        mReplacements.push_back({{end, end}, std::move(text)});
    }

    void AppendNewPlaces(std::string& result) {
        std::map<TextPlace, std::string> sections;
        std::vector<std::string*> order;
        for (const TextChange* change : mNewPlaces) {
            const auto [section, isNew] = sections.try_emplace(change->place);
            std::string& text = section->second;
            if (isNew) {
                order.push_back(&text);
                text = Header(*change);
            }
            text.append(change->key).append(" = ").append(change->value).append(mLineEnd);
        }
        for (const std::string* section : order) {
            if (!result.empty() && LINE_ENDS.find(result.back()) == std::string_view::npos)
                result.append(Break(result));
            if (!result.empty()) result.append(mLineEnd);
            result.append(*section);
        }
    }

    std::string Header(const TextChange& change) const {
        const std::string store = std::to_string(change.place.store);
        if (change.deviceWord.empty()) return "file = " + change.subsystemWord + store + mLineEnd;
        return "subsystem = " + change.subsystemWord + mLineEnd + "device = " + change.deviceWord + mLineEnd +
               "store = " + store + mLineEnd;
    }

    /// The end of a line for a text without one at its end. A backslash there would join the next line.
    std::string Break(std::string_view text) const {
        return text.ends_with('\\') ? mLineEnd + mLineEnd : mLineEnd;
    }
    std::size_t StartOfBlanks(std::size_t at) const {
        while (at > 0 && BLANKS.find(mText[at - 1]) != std::string_view::npos) --at;
        return at;
    }
    bool IsLineStart(std::size_t at) const {
        return at == 0 || LINE_ENDS.find(mText[at - 1]) != std::string_view::npos;
    }

    struct Found {
        std::vector<const TextLine*> lines;  ///< those that give the key a value
        bool isThere = false;                ///< no later line has removed it
        const TextLine* refused = nullptr;   ///< the last that could give it one, were it right

        void Take(const TextLine& line) {
            if (line.effect == TextLine::Effect::None) return;
            if (line.effect == TextLine::Effect::Fails) {
                refused = &line;
                return;
            }
            isThere = line.effect == TextLine::Effect::Sets;
            if (isThere) lines.push_back(&line);
            refused = nullptr;
        }
    };

    const CTextIndex& mIndex;
    std::string_view mText;
    std::string mLineEnd;
    std::map<Key, Found> mKeys;
    std::map<TextPlace, const TextLine*> mPlaceEnds;  ///< behind which a new key of the place goes
    std::vector<Replacement> mReplacements;
    std::vector<const TextChange*> mNewPlaces;
};

}  // namespace

std::string EditText(const CTextIndex& index, const std::vector<TextChange>& changes) {
    return Editor(index, changes).Result();
}

}  // namespace VemoKesConfigTools
