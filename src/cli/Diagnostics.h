#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kes::cli {

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
    /// The source line of a place with a caret, on a terminal only. `path` is read when it is first needed.
    void ShowSource(const std::string& path, std::uint32_t line, std::uint32_t column);

private:
    void Severity(const char* severity, const std::string& text) const;

    bool mTerminal;
    bool mColor;
    std::string mSourcePath;
    std::vector<std::string> mSourceLines;  ///< of the file of the last source line
};

}  // namespace kes::cli
