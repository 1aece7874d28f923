#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

// Looking at files and reading them. Paths are bytes, links are followed. What fails throws `FileError`.

/// What may be read whole.
enum class Readable {
    ANYTHING,      ///< pipes and devices too, to their end
    REGULAR_FILES  ///< anything else is refused, and never waited for
};

/// A file as it was when it was read.
struct FileContent {
    std::string bytes;
    FileStatus status;
};

/// Reads a file to its end: all of it or an error.
KES_API FileContent ReadFile(const std::string& path, Readable what);
/// Reads the first bytes of a regular file or block device; all of it when it is shorter.
KES_API std::string ReadStart(const std::string& path, std::size_t size);
/// The status of the file at this path; empty when there is none, as for a dangling link.
KES_API std::optional<FileStatus> Look(const std::string& path);
/// The names in a folder, in the order of the file system.
KES_API std::vector<std::string> ListFolder(const std::string& path);
KES_API void MakeFolder(const std::string& path);
/// A name in a folder as a path.
KES_API std::string Join(const std::string& folder, std::string_view name);
/// Writes to what is no regular file, such as a pipe or terminal, as it comes.
KES_API void WriteThrough(const std::string& path, std::string_view bytes);

}  // namespace VemoKesConfigTools::files
