#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <unistd.h>

namespace KesTest {

/// A temporary folder, removed with the object.
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
    /// Writes a file into the folder and returns its path.
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

/// The files of a folder with their contents, by name.
inline std::map<std::string, std::string> FilesOf(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file()) files[entry.path().filename()] = ReadFile(entry.path());
    }
    return files;
}

}  // namespace KesTest
