#pragma once

#include "cli/Scratch.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kes::cli {

/// The bytes of a file; what can be read of them.
std::string ReadWhole(const std::string& path);

/// A configuration text as the command was given it: a file, or a pipe or "-" for standard input, which are
/// kept in a temporary file. Throws `Failure` when it cannot be read.
class TextFile {
public:
    explicit TextFile(const std::string& name);
    /// A text that is not there yet, with what it is to begin with.
    TextFile(const std::string& name, const std::string& content);
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;
    ~TextFile() = default;

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
    void Open();

    std::string mName;
    std::optional<Scratch> mScratch;  ///< of a text that is no file of the user's
    std::string mPath;
    std::string mVersion;
    bool mIsEmpty = false;
};

}  // namespace kes::cli
