#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kes::tool {

/// The lines of a text, whose ends are LF, CR, CR LF and CR CR, as the text reader counts them. They
/// are looked for when the first one is asked for.
class SourceLines {
public:
    /// The text has to stay as long as the object.
    explicit SourceLines(std::string_view text) : mText(text) {}
    SourceLines(const SourceLines&) = delete;
    SourceLines& operator=(const SourceLines&) = delete;
    ~SourceLines() = default;

    /// A line without its end, counted from 1; empty where there is none.
    std::string_view Line(std::uint32_t number);

private:
    void Split();

    std::string_view mText;
    std::vector<std::string_view> mLines;  ///< empty before they were looked for
};

}  // namespace kes::tool
