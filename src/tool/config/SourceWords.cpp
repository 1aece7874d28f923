#include "tool/config/SourceWords.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace kes::tool {

namespace {

constexpr std::string_view BLANKS = " \t";

bool IsLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool IsNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool IsValueChar(char c) { return IsNameChar(c) || c == '-'; }

/// What of the line stands in front of a column.
std::string_view Before(std::string_view line, std::uint32_t end) {
    return line.substr(0, std::min<std::size_t>(line.size(), end == 0 ? 0 : end - 1));
}

SourceWord WordAt(std::string_view line, std::size_t from, std::size_t length) {
    const auto column = static_cast<std::uint32_t>(from + 1);
    const auto end = static_cast<std::uint32_t>(from + length + 1);
    return {std::string(line.substr(from, length)), column, end, ToCharacter(line, column),
            ToCharacter(line, end)};
}

}  // namespace

std::uint32_t ToCharacter(std::string_view line, std::uint32_t column) {
    if (column == 0) return 0;
    const std::string_view before = Before(line, column);
    const auto continues = [](unsigned char c) { return (c & 0xC0U) == 0x80U; };
    return column - static_cast<std::uint32_t>(std::ranges::count_if(before, continues));
}

std::optional<SourceWord> FindKeyWord(std::string_view line, std::string_view key, std::uint32_t end) {
    const std::string_view text = Before(line, end);
    // Nothing but indexes stands between a key and the equal sign; a word of a comment has something else.
    const auto standsAt = [&](std::size_t at) {
        if (!text.substr(at).starts_with(key)) return false;
        const std::string_view behind = line.substr(at + key.size());
        if (!behind.empty() && IsNameChar(behind.front())) return false;
        const std::size_t equal = behind.find_first_not_of(".0123456789 \t");
        return equal != std::string_view::npos && behind[equal] == '=';
    };
    const std::size_t start = text.find_first_not_of(BLANKS);
    if (key.empty() || start == std::string_view::npos) return std::nullopt;
    if (standsAt(start)) return WordAt(line, start, key.size());
    const std::size_t dot = text.find('.', start);
    if (dot == std::string_view::npos) return std::nullopt;
    const bool prefix = std::ranges::all_of(text.substr(start, dot - start), IsNameChar);
    if (!prefix || !standsAt(dot + 1)) return std::nullopt;
    return WordAt(line, dot + 1, key.size());
}

std::optional<SourceWord> FindValueWord(std::string_view line, std::string_view word, std::uint32_t end) {
    const std::string_view text = Before(line, end);
    const std::size_t value = text.find('=');
    if (word.empty() || value == std::string_view::npos) return std::nullopt;
    if (text.find_first_of("\"#\\") != std::string_view::npos || line.find("/*") != std::string_view::npos ||
        line.find("*/") != std::string_view::npos) {
        return std::nullopt;
    }
    std::optional<SourceWord> found;
    for (std::size_t at = text.find(word, value + 1); at != std::string_view::npos;
         at = text.find(word, at + 1)) {
        const std::size_t behind = at + word.size();
        if (IsValueChar(text[at - 1]) || (behind < line.size() && IsValueChar(line[behind]))) continue;
        if (found) return std::nullopt;
        found = WordAt(line, at, word.size());
    }
    return found;
}

std::optional<SourceWord> FindPlaceWord(std::string_view line, std::uint32_t end) {
    constexpr std::string_view KEYWORDS[] = {"file", "subsystem", "device", "store"};
    const std::string_view text = Before(line, end);
    const std::size_t start = text.find_first_not_of(BLANKS);
    const std::size_t equal = text.find('=');
    if (start == std::string_view::npos || equal == std::string_view::npos) return std::nullopt;
    std::string keyword(text.substr(start, equal - start));
    keyword.erase(keyword.find_last_not_of(BLANKS) + 1);
    std::ranges::transform(keyword, keyword.begin(), [](unsigned char c) { return std::tolower(c); });
    if (std::ranges::find(KEYWORDS, keyword) == std::end(KEYWORDS)) return std::nullopt;
    const std::size_t from = std::min(text.find_first_not_of(BLANKS, equal + 1), text.size());
    std::size_t length = 0;
    while (from + length < text.size() && IsLetter(text[from + length])) ++length;
    return WordAt(line, from, length);
}

}  // namespace kes::tool
