#pragma once

#include <string>

namespace kes::cli {

/// A file that appears whole or not at all: it is written under a temporary name beside its place, and takes
/// that place when it is complete. A symbolic link is followed, permissions and the owner are kept. Without
/// `Commit` nothing is left behind.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Where to write to; at most an empty file is there yet.
    const std::string& TemporaryPath() const { return mTemporary; }
    /// Syncs and renames. Throws `Failure`.
    void Commit();

private:
    std::string mPath;
    std::string mTemporary;
};

}  // namespace kes::cli
