#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kes::cli {

/// The lines of a text file, whose ends are LF, CR, CR LF and CR CR, as the text reader counts them. The file
/// is read when the first line is asked for.
class SourceLines {
public:
    explicit SourceLines(std::string path) : mPath(std::move(path)) {}
    SourceLines(const SourceLines&) = delete;
    SourceLines& operator=(const SourceLines&) = delete;
    ~SourceLines() = default;

    const std::string& Path() const { return mPath; }
    /// A line without its end, counted from 1; empty where there is none.
    std::string_view Line(std::uint32_t number);

private:
    void Read();

    std::string mPath;
    std::string mText;
    std::vector<std::string_view> mLines;  ///< of `mText`; empty before it was read
};

}  // namespace kes::cli
