#include "host/HostString.h"

#include "utf8.h"

#include <iterator>
#include <type_traits>

namespace VEMO::Kes::ConfigurationTools {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

/// Copies units as long as each stands for itself in both encodings, which is all of nearly any text. Gives
/// how many these were.
template <typename From, typename To>
std::size_t CopyAscii(From text, To& copy) {
    using Unit = std::make_unsigned_t<typename From::value_type>;
    copy.resize(text.size());
    std::size_t count = 0;
    for (const auto unit : text) {
        if (static_cast<Unit>(unit) - 1U >= 0x7FU) break;
        copy[count++] = static_cast<typename To::value_type>(unit);
    }
    copy.resize(count);
    return count;
}

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::u16string FromUtf8(std::string_view utf8) {
    std::u16string text;
    utf8.remove_prefix(CopyAscii(utf8, text));
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
    std::string narrow;
    units.remove_prefix(CopyAscii(units, narrow));
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
