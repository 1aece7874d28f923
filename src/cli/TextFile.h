#pragma once

#include <cstdint>
#include <string>

namespace kes::cli {

/// A configuration text as the command was given it: a file, or "-" for standard input, which is kept in a
/// temporary file. Throws `Failure` when it cannot be read.
class TextFile {
public:
    explicit TextFile(const std::string& name);
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile();

    /// How messages name it.
    const std::string& Name() const { return mName; }
    const std::string& Path() const { return mPath; }
    bool IsEmpty() const { return mIsEmpty; }
    /// In bytes; 0 when the system does not tell it.
    std::uint64_t Size() const { return SizeOf(mPath); }
    static std::uint64_t SizeOf(const std::string& path);
    /// The text of the first "version" line; empty without one. It is looked for without the metadata, line
    /// by line, so it is good for a default only.
    const std::string& Version() const { return mVersion; }

private:
    std::string mName;
    std::string mPath;
    std::string mTemporary;  ///< to be removed; empty for a file of the user's
    std::string mVersion;
    bool mIsEmpty = false;
};

}  // namespace kes::cli
