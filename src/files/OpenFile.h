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

/// An open file, closed with the object. Interrupted and short calls are continued, so that an operation does
/// all that was asked or throws `FileError`.
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
    /// All bytes to the end. Fails when a regular file ends before the size that it has.
    std::string ReadAll() const;
    /// The first bytes, fewer when the file is shorter.
    std::string ReadStart(std::size_t size) const;
    /// The bytes of a stretch that lies in the file.
    std::string Read(std::uint64_t offset, std::size_t size) const;
    void Write(std::uint64_t offset, std::string_view bytes) const;
    /// Writes where the file stands: to a pipe, terminal or other device.
    void WriteNext(std::string_view bytes) const;
    /// Returns once all that was written lies on the disk. A file that has nothing to bring there, such as
    /// the node of a chip, is in order.
    void Sync() const;
    /// Closes it now; a failure to do so is an error of writing.
    void Close();

private:
    std::string mPath;
    int mHandle;
};

/// Calls the disk again while the call is interrupted.
template <typename Call>
auto Uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -EINTR) return result;
    }
}

/// Brings the names in a folder to the disk, where the file system offers that.
void SyncFolder(const std::string& path);
/// The folder that a name lies in.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace VemoKesConfigTools::files
