#include "cli/TextFile.h"

#include "cli/ExitCodes.h"
#include "cli/Platform.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>

namespace kes::cli {

namespace fs = std::filesystem;

namespace {

std::string FindVersion(std::istream& text) {
    // Far enough down for any heading, and never through a whole file of megabytes.
    constexpr int MOST_LINES = 1000;
    constexpr std::size_t LONGEST_LINE = 1000;
    static const std::regex version("^[ \\t]*version[ \\t]*=[ \\t]*([^ \\t\\r#]+)", std::regex::icase);
    std::string line;
    for (int i = 0; i < MOST_LINES && std::getline(text, line); ++i) {
        std::smatch match;
        if (line.size() < LONGEST_LINE && std::regex_search(line, match, version)) return match[1];
    }
    return {};
}

}  // namespace

TextFile::TextFile(const std::string& name) : mName(name), mPath(name) {
    if (name == "-") {
        mName = "<stdin>";
        std::error_code failed;
        mTemporary = TemporaryBeside((fs::temp_directory_path(failed) / "kes-stdin").string());
        std::ofstream copy(mTemporary, std::ios::binary);
        if (std::cin.peek() != std::char_traits<char>::eof()) copy << std::cin.rdbuf();
        copy.close();
        mPath = mTemporary;
        if (!copy) {
            fs::remove(mTemporary, failed);
            throw Failure(EXIT_SYSTEM, "cannot keep standard input in " + mTemporary);
        }
    }
    std::error_code failed;
    if (fs::is_directory(mPath, failed)) throw Failure(EXIT_SYSTEM, "is a directory");
    std::ifstream file(mPath, std::ios::binary);
    if (!file) throw Failure(EXIT_SYSTEM, std::string("cannot be opened: ") + std::strerror(errno));
    mIsEmpty = file.peek() == std::char_traits<char>::eof();
    mVersion = FindVersion(file);
}

TextFile::~TextFile() {
    std::error_code ignored;
    if (!mTemporary.empty()) fs::remove(mTemporary, ignored);
}

}  // namespace kes::cli
