#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace VemoKesConfigTools::files {

/// An open file, closed with the object. Interrupted and partial system calls are continued: an operation
/// completes or throws `FileError`.
class OpenFile {
public:
    OpenFile(const std::string& path, OpenFor use);
    OpenFile(OpenFile&& other) noexcept;
    OpenFile& operator=(OpenFile&& other) noexcept;
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    const std::string& Path() const { return mPath; }
    int Handle() const { return mHandle; }
    FileStatus Status() const;
    /// All bytes to the end. Fails if a regular file ends before its size.
    std::string ReadAll() const;
    /// The first `size` bytes, or all of them if the file is shorter.
    std::string ReadStart(std::size_t size) const;
    /// The bytes of a range that lies within the file.
    std::string Read(std::uint64_t offset, std::size_t size) const;
    void Write(std::uint64_t offset, std::string_view bytes) const;
    /// Writes at the current position: to a pipe, terminal or other device.
    void WriteNext(std::string_view bytes) const;
    /// Flushes all written data to the disk. Succeeds for a file that does not support this, such as the
    /// device node of a chip.
    void Sync() const;
    /// Closes the file now; a failure is reported as a write error.
    void Close();

private:
    std::string mPath;
    int mHandle;
};

/// Repeats a call of the disk for as long as it is interrupted by signals.
template <typename Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -EINTR) return result;
    }
}

/// Flushes the entries of a folder to the disk, if the file system supports that.
void SyncFolder(const std::string& path);
/// The folder that contains the path's last component.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace VemoKesConfigTools::files
