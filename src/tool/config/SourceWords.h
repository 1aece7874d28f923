#pragma once

#include "tool/config/ConfigReport.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kes::tool {

// Where words stand in one line of a text, as far as that can be told without the reader. Columns count from
// 1; `end` is the column where the reader stopped, in front of which the word must stand.

/// A column in bytes as a column in code points.
std::uint32_t ToCharacter(std::string_view line, std::uint32_t column);

/// The key at the beginning of a line, behind a prefix if there is one.
std::optional<SourceWord> FindKeyWord(std::string_view line, std::string_view key, std::uint32_t end);
/// A word of the value, if it stands there exactly once, and neither quotes nor comments make that unsure.
std::optional<SourceWord> FindValueWord(std::string_view line, std::string_view word, std::uint32_t end);
/// What a keyword line ("device=...") gives, up to `end`; nothing for another line.
std::optional<SourceWord> FindPlaceWord(std::string_view line, std::uint32_t end);

}  // namespace kes::tool
