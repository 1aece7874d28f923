#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

// Examining and reading files. Paths are bytes, links are followed. Failures throw `FileError`.

/// Which kinds of file may be read.
enum class Readable {
    ANYTHING,      ///< also pipes and devices, to their end
    REGULAR_FILES  ///< anything else is an error, reported without waiting for data
};

/// A file's content and its status at the time it was read.
struct FileContent {
    std::string bytes;
    FileStatus status;
};

/// Reads a whole file; never returns only part of it.
KES_API FileContent ReadFile(const std::string& path, Readable what);
/// Reads the first `size` bytes of a regular file or block device, or all of it if it is shorter.
KES_API std::string ReadStart(const std::string& path, std::size_t size);
/// The status of the file at this path; empty if there is none (also for a dangling link).
KES_API std::optional<FileStatus> Look(const std::string& path);
/// The names in a folder, in file system order.
KES_API std::vector<std::string> ListFolder(const std::string& path);
KES_API void MakeFolder(const std::string& path);
/// The path of a name in a folder.
KES_API std::string Join(const std::string& folder, std::string_view name);
/// Writes to a pipe, terminal or other device directly, without replacing it.
KES_API void WriteThrough(const std::string& path, std::string_view bytes);

}  // namespace VemoKesConfigTools::files
