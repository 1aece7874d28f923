#pragma once

#include <string_view>

namespace VemoKesConfigTools {

/// Whether two texts are equal, ignoring the case of ASCII letters.
constexpr bool EqualsIgnoringCase(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(left[i]) != lower(right[i])) return false;
    }
    return true;
}

}  // namespace VemoKesConfigTools
