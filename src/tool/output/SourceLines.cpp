#include "tool/output/SourceLines.h"

namespace kes::tool {

void SourceLines::Split() {
    const std::string_view text = mText;
    std::size_t start = 0;
    for (std::size_t end = text.find_first_of("\r\n"); end != std::string_view::npos;
         end = text.find_first_of("\r\n", start)) {
        mLines.push_back(text.substr(start, end - start));
        start = end + 1;
        const bool two =
            text[end] == '\r' && start < text.size() && (text[start] == '\n' || text[start] == '\r');
        if (two) ++start;
    }
    mLines.push_back(text.substr(start));
}

std::string_view SourceLines::Line(std::uint32_t number) {
    if (mLines.empty()) Split();
    return number == 0 || number > mLines.size() ? std::string_view() : mLines[number - 1];
}

}  // namespace kes::tool
