#include "host/HostString.h"

#include "utf8.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace VEMO::Kes::ConfigurationTools {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

/// Nearly all texts are ASCII, where each unit stands for itself in both encodings.
template <typename View>
bool IsAscii(View text) {
    typename View::value_type all = 0;
    for (const auto unit : text) all = static_cast<typename View::value_type>(all | unit);
    return (static_cast<std::make_unsigned_t<typename View::value_type>>(all) & ~0x7FU) == 0;
}

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::u16string FromUtf8(std::string_view utf8) {
    utf8 = utf8.substr(0, utf8.find('\0'));
    if (IsAscii(utf8)) return {utf8.begin(), utf8.end()};
    std::u16string text;
    if (utf8::is_valid(utf8.begin(), utf8.end())) {
        utf8::unchecked::utf8to16(utf8.begin(), utf8.end(), std::back_inserter(text));
        return text;
    }
    std::string mended;
    utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(mended), REPLACEMENT);
    utf8::unchecked::utf8to16(mended.begin(), mended.end(), std::back_inserter(text));
    return text;
}

}  // namespace

HostString::HostString(const char* utf8) {
    if (utf8 != nullptr) mText = FromUtf8(utf8);
}

HostString::HostString(std::string_view utf8) : mText(FromUtf8(utf8)) {}

std::string HostString::ToNarrow() const {
    std::u16string_view units = Units();
    units = units.substr(0, units.find(u'\0'));
    std::string narrow;
    if (IsAscii(units)) {
        narrow.resize(units.size());
        std::ranges::transform(units, narrow.begin(), [](char16_t unit) { return static_cast<char>(unit); });
        return narrow;
    }
    narrow.reserve(units.size());
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
