#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

/// Reads a whole file. Throws `Refusal` when it cannot be opened or read.
std::string ReadFile(const std::string& path);

/// Files that are written beside their final names and get these only once all of them lie on the disk
/// whole. What was not committed is removed again.
class FileReplacement {
public:
    FileReplacement() = default;
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    ~FileReplacement();

    /// Writes a temporary file and brings it to the disk. Throws `Refusal`.
    void Add(const std::string& path, std::string_view content);
    /// Gives every file its name, in the order in which they were added; each is the old one or the new one
    /// whenever this is cut. Throws `Refusal`.
    void Commit();

private:
    struct File {
        std::string temporary;
        std::string path;
    };
    std::vector<File> mFiles;
};

}  // namespace VemoKesConfigTools
