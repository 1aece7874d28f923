#pragma once

#include <array>
#include <string_view>

namespace VemoKesConfigTools {

/// A set of characters with a constant-time test.
class CCharSet {
public:
    constexpr explicit CCharSet(std::string_view characters) {
        for (const char c : characters) mHolds[static_cast<unsigned char>(c)] = true;
    }
    /// Whether the set holds the character, given as 0 to 255; the end of the text, -1, is in no set.
    constexpr bool Holds(int c) const { return c >= 0 && mHolds[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> mHolds{};
};

inline constexpr CCharSet WHITESPACE_CHARS(" \t");
inline constexpr CCharSet NAME_CHARS("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789");
inline constexpr CCharSet KEYWORD_CHARS("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_");
inline constexpr CCharSet ENUM_CHARS("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789-");

}  // namespace VemoKesConfigTools
