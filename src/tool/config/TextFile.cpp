#include "tool/config/TextFile.h"

#include "tool/output/ExitCodes.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace kes::tool {

namespace files = VemoKesConfigTools::files;

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

std::string FindVersion(std::string_view text) {
    // Far enough down for any heading, and never through a whole file of megabytes.
    constexpr int MOST_LINES = 1000;
    constexpr std::size_t LONGEST_LINE = 1000;
    for (int i = 0; i < MOST_LINES && !text.empty(); ++i) {
        const std::string_view line = text.substr(0, text.find('\n'));
        std::string version = line.size() < LONGEST_LINE ? VersionOf(line) : std::string();
        if (!version.empty()) return version;
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return {};
}

std::string ReadStandardInput() {
    constexpr std::size_t BLOCK = 65536;
    std::string content;
    std::vector<char> block(BLOCK);
    // Not std::cin, which takes an error for the end.
    while (const std::size_t came = std::fread(block.data(), 1, block.size(), stdin))
        content.append(block.data(), came);
    if (std::ferror(stdin) != 0)
        throw Failure(EXIT_SYSTEM, std::string("cannot be read: ") + std::strerror(errno));
    return content;
}

}  // namespace

TextFile::TextFile(const std::string& name) : mName(name) {
    if (name == "-") {
        mName = "<stdin>";
        mFile.bytes = ReadStandardInput();
    } else {
        try {
            mFile = files::ReadFile(name, files::Readable::ANYTHING);
        } catch (const files::FileError& error) {
            throw Failure(EXIT_SYSTEM, error.Number() == EISDIR ? "is a directory" : error.Reason());
        }
    }
    mVersion = FindVersion(mFile.bytes);
}

TextFile::TextFile(const std::string& name, const std::string& content)
    : mName(name), mFile{content, {}}, mVersion(FindVersion(content)), mIsNew(true) {}

std::uint64_t TextFile::SizeOf(const std::string& path) {
    try {
        const auto status = files::Look(path);
        return status && status->kind == files::FileKind::REGULAR ? status->size : 0;
    } catch (const files::FileError&) {
        return 0;
    }
}

}  // namespace kes::tool
