#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace KesTest {

/// A folder of a test's own, gone with the test.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kes-test-XXXXXX").string();
        mPath = mkdtemp(pattern.data());
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    std::string operator/(const std::string& name) const { return mPath + "/" + name; }
    const std::string& Path() const { return mPath; }
    /// Writes a file into the folder and gives its path.
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(*this / name, std::ios::binary) << content;
        return *this / name;
    }

private:
    std::string mPath;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

struct Outcome {
    int code;
    std::string out;
    std::string err;
};

/// Runs the real command. `before` goes in front of it, as the shell has it: variables, or a pipe.
inline Outcome RunKes(const std::vector<std::string>& arguments, const std::string& before = {}) {
    const TempFolder folder;
    std::string line = before + " '" KES_TEST_COMMAND "'";
    for (const std::string& argument : arguments) line += " '" + Replaced(argument, "'", "'\\''") + "'";
    line += " >'" + folder / "out" + "' 2>'" + folder / "err" + "'";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(folder / "out"), ReadFile(folder / "err")};
}

/// The database of the shipped example.
inline const std::string EXAMPLE_DATABASE = std::string(KES_TEST_SHARE_DIR) + "/examples/ostrell.db";
inline const std::string EXAMPLE_FOLDER = std::string(KES_TEST_SOURCE_DIR) + "/examples/ostrell";

}  // namespace KesTest
