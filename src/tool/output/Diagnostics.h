#pragma once

#include "tool/output/SourceLines.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kes::tool {

/// How much of a line is shown.
inline constexpr std::size_t WIDEST_SOURCE = 200;

/// Prints messages on standard error: `FILE:LINE:COLUMN: error: TEXT`, and on a terminal the source line with
/// a caret below, in colour unless that is unwanted.
class Diagnostics {
public:
    explicit Diagnostics(bool noColor);

    /// A message about a file as a whole.
    void Report(const std::string& file, const char* severity, const std::string& text) const;
    /// A message about a place in a file, both counted from 1, the column in bytes.
    void Report(const std::string& file, std::uint32_t line, std::uint32_t column, const char* severity,
                const std::string& text) const;
    /// The source line of a place with a caret, on a terminal only.
    void ShowLine(std::string_view line, std::uint32_t column) const;

private:
    void Print(const std::string& where, const std::string& severity, const std::string& text) const;

    bool mTerminal;
    bool mColor;
};

/// Prints whole lines on standard error in one step, so that those of several processes do not mix. They are
/// printed as they are.
void PrintError(const std::string& lines);

}  // namespace kes::tool
