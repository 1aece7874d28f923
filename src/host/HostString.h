#pragma once

#include "messages/Export.h"

#include <compare>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace VEMO::Kes::ConfigurationTools {

/// The text of the host API: 16-bit Unicode (UTF-16) that can be null. Null and empty differ.
///
/// Converts from and to UTF-8, the narrow encoding of the library. Invalid sequences, including lone
/// surrogates, become U+FFFD. A text ends at its first NUL.
class KES_API HostString {
public:
    /// Null.
    HostString() = default;
    HostString(std::nullptr_t) {}
    /// From UTF-8. A null pointer gives null.
    HostString(const char* utf8);
    HostString(std::string_view utf8);
    HostString(const std::string& utf8) : HostString(std::string_view(utf8)) {}
    explicit HostString(std::u16string text) : mText(std::move(text)) {}

    bool IsNull() const { return !mText.has_value(); }
    /// Whether it is null or has no characters.
    bool IsNullOrEmpty() const { return !mText || mText->empty(); }
    /// The text in UTF-8 up to the first NUL; empty for null.
    std::string ToNarrow() const;
    /// The UTF-16 code units of the text; empty for null.
    std::u16string_view Units() const { return mText ? std::u16string_view(*mText) : std::u16string_view(); }

    bool operator==(const HostString&) const = default;
    auto operator<=>(const HostString&) const = default;

private:
    std::optional<std::u16string> mText;
};

/// Writes UTF-8; nothing for null.
KES_API std::ostream& operator<<(std::ostream& stream, const HostString& text);

}  // namespace VEMO::Kes::ConfigurationTools
