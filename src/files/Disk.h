#pragma once

#include "messages/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::files {

enum class FileKind { REGULAR, FOLDER, BLOCK_DEVICE, CHARACTER_DEVICE, PIPE, SOCKET, LINK };

/// The metadata of a file.
struct FileStatus {
    FileKind kind = FileKind::REGULAR;
    std::uint64_t device = 0;  ///< together with `inode` identifies the file
    std::uint64_t inode = 0;
    std::uint64_t size = 0;  ///< in bytes; the capacity of a block device
    std::uint64_t links = 1;
    std::int64_t modified = 0;  ///< in nanoseconds
    std::uint32_t mode = 0;     ///< permission bits, set-id and sticky bits
    std::uint32_t owner = 0;
    std::uint32_t group = 0;

    bool IsSameFile(const FileStatus& other) const { return device == other.device && inode == other.inode; }
};

/// How a file is opened. Opening never waits for the other end of a pipe.
enum class OpenFor {
    READING,      ///< a file, device, pipe or folder
    UPDATING,     ///< an existing file, for reading and writing in place
    WRITING,      ///< an existing file, device or pipe, for writing only
    TRUNCATING,   ///< for writing; created if missing, emptied if it exists
    NEW_PRIVATE,  ///< created with access for its owner only; fails if the name exists, even as a link
    NEW_SHARED    ///< like NEW_PRIVATE, but with the default access of new files (umask)
};

enum class LockMode { SHARED, EXCLUSIVE };

/// The file operations of the operating system. Every file access of the library goes through this interface,
/// so that tests can substitute a disk that fails, loses writes and reorders them. Each function is one
/// system call: it may transfer fewer bytes than asked or be interrupted (EINTR), which callers handle. Paths
/// are bytes. A result of 0 or more means success, a negative one is a negated `errno`.
class IDisk {
public:
    IDisk() = default;
    IDisk(const IDisk&) = delete;
    IDisk& operator=(const IDisk&) = delete;
    virtual ~IDisk() = default;

    /// Returns a handle that the caller closes. When a new file is to be created, a link as the last
    /// component of the path is not followed.
    virtual int Open(const std::string& path, OpenFor use) = 0;
    virtual int Close(int handle) = 0;
    /// Returns the number of bytes read; 0 at the end of the file.
    virtual std::int64_t ReadAt(int handle, std::uint64_t offset, char* bytes, std::size_t size) = 0;
    /// Reads at the current position, for files that cannot seek. Waits for the other end of a pipe.
    virtual std::int64_t ReadNext(int handle, char* bytes, std::size_t size) = 0;
    virtual std::int64_t WriteAt(int handle, std::uint64_t offset, const char* bytes, std::size_t size) = 0;
    virtual std::int64_t WriteNext(int handle, const char* bytes, std::size_t size) = 0;
    /// Flushes a file, or the entries of a folder, to the disk.
    virtual int Sync(int handle) = 0;
    virtual int Status(int handle, FileStatus& status) = 0;
    /// With `follow` the status of what a link points at, otherwise that of the link itself.
    virtual int StatusOf(const std::string& path, bool follow, FileStatus& status) = 0;
    virtual int SetOwner(int handle, std::uint32_t owner, std::uint32_t group) = 0;
    virtual int SetMode(int handle, std::uint32_t mode) = 0;
    /// Extended attributes with their values, including access control lists.
    virtual int Attributes(int handle, std::vector<std::pair<std::string, std::string>>& attributes) = 0;
    virtual int SetAttribute(int handle, const std::string& name, const std::string& value) = 0;
    virtual int Rename(const std::string& from, const std::string& to) = 0;
    virtual int Remove(const std::string& path) = 0;
    virtual int RemoveFolder(const std::string& path) = 0;
    virtual int MakeFolder(const std::string& path) = 0;
    /// The names in a folder, in file system order, without "." and "..".
    virtual int List(const std::string& path, std::vector<std::string>& names) = 0;
    /// What a link points at.
    virtual int ReadLink(const std::string& path, std::string& target) = 0;
    /// Takes a lock, or fails with EWOULDBLOCK while another process holds it. A lock that the handle already
    /// has is converted to this mode. Closing the handle releases it.
    virtual int TryLock(int handle, LockMode mode) = 0;
    /// The process that holds a lock on the file, as "kes, process 123"; empty if it cannot be determined.
    virtual std::string LockHolder(int handle) = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    /// The folder for temporary files.
    virtual std::string TemporaryFolder() = 0;
    /// An unpredictable part of a file name: lower-case letters and digits.
    virtual std::string RandomWord() = 0;
};

/// The disk in use: the operating system's, unless a test has substituted another.
KES_API IDisk& Disk();

/// Substitutes another disk during the lifetime of the object. For tests; no file may be open.
class KES_API DiskInUse {
public:
    explicit DiskInUse(IDisk& disk);
    DiskInUse(const DiskInUse&) = delete;
    DiskInUse& operator=(const DiskInUse&) = delete;
    ~DiskInUse();

private:
    IDisk* mpBefore;
};

/// The operating system's disk.
IDisk& SystemDisk();

}  // namespace VemoKesConfigTools::files
