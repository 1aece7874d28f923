#include "host/HostString.h"

#include "utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

namespace VEMO::Kes::ConfigurationTools {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

/// The number of leading code units that are the same in both encodings: none of them is zero or above 0x7F.
/// Almost all text consists of these only, so they are counted a word at a time.
template <typename View>
std::size_t AsciiPrefix(View text) {
    using Unit = std::make_unsigned_t<typename View::value_type>;
    constexpr std::size_t IN_WORD = sizeof(std::uint64_t) / sizeof(Unit);
    constexpr std::uint64_t ONES =
        std::numeric_limits<std::uint64_t>::max() / std::numeric_limits<Unit>::max();
    std::size_t count = 0;
    for (; text.size() - count >= IN_WORD; count += IN_WORD) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + count, sizeof word);
        // Subtracting 1 from each unit sets the top bit where the unit is zero.
        if (((word | (word - ONES)) & ~(ONES * 0x7F)) != 0) break;
    }
    while (count < text.size() && static_cast<Unit>(text[count]) - 1U < 0x7FU) ++count;
    return count;
}

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::u16string FromUtf8(std::string_view utf8) {
    const std::size_t ascii = AsciiPrefix(utf8);
    std::u16string text(utf8.begin(), utf8.begin() + ascii);
    utf8.remove_prefix(ascii);
    utf8 = utf8.substr(0, utf8.find('\0'));
    if (utf8.empty()) return text;
    if (utf8::is_valid(utf8.begin(), utf8.end())) {
        utf8::unchecked::utf8to16(utf8.begin(), utf8.end(), std::back_inserter(text));
        return text;
    }
    std::string valid;
    utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(valid), REPLACEMENT);
    utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(text));
    return text;
}

}  // namespace

HostString::HostString(const char* utf8) {
    if (utf8 != nullptr) mText = FromUtf8(utf8);
}

HostString::HostString(std::string_view utf8) : mText(FromUtf8(utf8)) {}

std::string HostString::ToNarrow() const {
    std::u16string_view units = Units();
    const std::size_t ascii = AsciiPrefix(units);
    std::string narrow(ascii, '\0');
    std::transform(units.begin(), units.begin() + ascii, narrow.begin(),
                   [](char16_t unit) { return static_cast<char>(unit); });
    units.remove_prefix(ascii);
    units = units.substr(0, units.find(u'\0'));
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t point = units[i];
        if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
            point = 0x10000 + ((point - 0xD800) << 10U) + (static_cast<char32_t>(units[++i]) - 0xDC00);
        } else if (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i])) {
            point = REPLACEMENT;
        }
        utf8::unchecked::append(point, std::back_inserter(narrow));
    }
    return narrow;
}

std::ostream& operator<<(std::ostream& stream, const HostString& text) { return stream << text.ToNarrow(); }

}  // namespace VEMO::Kes::ConfigurationTools
