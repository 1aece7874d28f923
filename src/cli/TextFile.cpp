#include "cli/TextFile.h"

#include "cli/ExitCodes.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>

namespace kes::cli {

namespace fs = std::filesystem;

namespace {

/// The label of a line `version = LABEL`, empty for any other line.
std::string VersionOf(std::string_view line) {
    constexpr std::string_view KEYWORD = "version";
    constexpr std::string_view BLANKS = " \t";
    const auto skipBlanks = [&] {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
    };
    skipBlanks();
    const bool matches = std::ranges::equal(line.substr(0, KEYWORD.size()), KEYWORD,
                                            [](unsigned char a, char b) { return std::tolower(a) == b; });
    if (!matches) return {};
    line.remove_prefix(KEYWORD.size());
    skipBlanks();
    if (!line.starts_with('=')) return {};
    line.remove_prefix(1);
    skipBlanks();
    return std::string(line.substr(0, line.find_first_of(" \t\r#")));
}

std::string FindVersion(std::istream& text) {
    // Far enough down for any heading, and never through a whole file of megabytes.
    constexpr int MOST_LINES = 1000;
    constexpr std::size_t LONGEST_LINE = 1000;
    std::string line;
    for (int i = 0; i < MOST_LINES && std::getline(text, line); ++i) {
        std::string version = line.size() < LONGEST_LINE ? VersionOf(line) : std::string();
        if (!version.empty()) return version;
    }
    return {};
}

}  // namespace

std::string ReadWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TextFile::TextFile(const std::string& name) : mName(name), mPath(name) {
    if (name == "-") {
        mName = "<stdin>";
        const std::string content{std::istreambuf_iterator<char>(std::cin), {}};
        mPath = mScratch.emplace(content).Path();
    } else if (std::error_code failed; fs::exists(name, failed) && fs::is_other(name, failed)) {
        // A pipe, of a process substitution for one, gives its bytes once only.
        mPath = mScratch.emplace(ReadWhole(name)).Path();
    }
    Open();
}

TextFile::TextFile(const std::string& name, const std::string& content) : mName(name) {
    mPath = mScratch.emplace(content).Path();
    Open();
}

void TextFile::Open() {
    std::error_code failed;
    if (fs::is_directory(mPath, failed)) throw Failure(EXIT_SYSTEM, "is a directory");
    std::ifstream file(mPath, std::ios::binary);
    if (!file) throw Failure(EXIT_SYSTEM, std::string("cannot be opened: ") + std::strerror(errno));
    mIsEmpty = file.peek() == std::char_traits<char>::eof();
    mVersion = FindVersion(file);
}

std::uint64_t TextFile::SizeOf(const std::string& path) {
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(path, failed);
    return failed ? 0 : size;
}

}  // namespace kes::cli
