#include "tool/output/Printable.h"

#include "tool/output/Platform.h"

#include <algorithm>
#include <cstdint>
#include <utf8.h>

namespace kes::tool {

namespace {

bool IsPlainAscii(char c) { return c >= 0x20 && c < 0x7F; }

/// Signs that a terminal acts on, or that make a line read in another order than it has.
bool IsControl(std::uint32_t code) {
    constexpr std::pair<std::uint32_t, std::uint32_t> RANGES[] = {
        {0x00, 0x1F}, {0x7F, 0x9F}, {0x61C, 0x61C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069},
    };
    return std::ranges::any_of(
        RANGES, [&](const auto& range) { return code >= range.first && code <= range.second; });
}

void AppendQuoted(std::string& shown, char c) {
    constexpr std::string_view NAMED = "\a\b\t\n\v\f\r";
    constexpr std::string_view LETTERS = "abtnvfr";
    shown += '\\';
    if (const std::size_t named = NAMED.find(c); named != std::string_view::npos) {
        shown += LETTERS[named];
        return;
    }
    const auto byte = static_cast<unsigned char>(c);
    for (const unsigned shift : {6U, 3U, 0U}) shown += static_cast<char>('0' + ((byte >> shift) & 7U));
}

std::string Quoted(std::string_view text, std::string_view kept) {
    if (std::ranges::all_of(text, IsPlainAscii)) return std::string(text);
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        const std::string_view bytes = text.substr(0, character.size);
        if (character.printable || kept.find(bytes.front()) != std::string_view::npos) {
            shown += bytes;
        } else {
            for (const char c : bytes) AppendQuoted(shown, c);
        }
        text.remove_prefix(character.size);
    }
    return shown;
}

}  // namespace

Character FirstCharacter(std::string_view text) {
    const char first = text.front();
    if (IsPlainAscii(first)) return {1, true};
    constexpr std::size_t LONGEST = 4;
    const char* next = text.data();
    const char* const end = next + std::min(LONGEST, text.size());
    try {
        const std::uint32_t code = utf8::next(next, end);
        return {static_cast<std::size_t>(next - text.data()), !IsControl(code)};
    } catch (const utf8::exception&) {
        return {1, false};
    }
}

std::string Printable(std::string_view text) { return Quoted(text, {}); }

std::string PrintableLines(std::string_view text) { return Quoted(text, "\n\t"); }

std::string ForOutput(const std::string& text) {
    return OutputGoesToTerminal() ? PrintableLines(text) : text;
}

}  // namespace kes::tool
