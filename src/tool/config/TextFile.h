#pragma once

#include "files/Files.h"

#include <cstdint>
#include <string>

namespace kes::tool {

/// A configuration text as the command was given it, read whole: a file, a pipe, or "-" for standard input.
/// Throws `Failure` when not all of it can be read.
class TextFile {
public:
    explicit TextFile(const std::string& name);
    /// A text that is not there yet, with what it is to begin with.
    TextFile(const std::string& name, const std::string& content);

    /// How messages name it.
    const std::string& Name() const { return mName; }
    const std::string& Content() const { return mFile.bytes; }
    /// The file as it was read.
    const VemoKesConfigTools::files::FileContent& File() const { return mFile; }
    /// There is no such file yet.
    bool IsNew() const { return mIsNew; }
    bool IsEmpty() const { return Content().empty(); }
    /// In bytes, before the text is read; 0 when the system does not tell it.
    static std::uint64_t SizeOf(const std::string& path);
    /// The text of the first "version" line; empty without one. It is looked for without the metadata, line
    /// by line, so it is good for a default only.
    const std::string& Version() const { return mVersion; }

private:
    std::string mName;
    VemoKesConfigTools::files::FileContent mFile;
    std::string mVersion;
    bool mIsNew = false;
};

}  // namespace kes::tool
