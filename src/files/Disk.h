#pragma once

#include "messages/Export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::files {

enum class FileKind { REGULAR, FOLDER, BLOCK_DEVICE, CHARACTER_DEVICE, PIPE, SOCKET, LINK };

/// What the system knows of a file.
struct FileStatus {
    FileKind kind = FileKind::REGULAR;
    std::uint64_t device = 0;  ///< with `inode` the identity of the file
    std::uint64_t inode = 0;
    std::uint64_t size = 0;  ///< in bytes; of a block device its capacity
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
    TRUNCATING,   ///< for writing; created when it is not there, emptied when it is
    NEW_PRIVATE,  ///< created for its owner alone; fails when anything has the name already, a link too
    NEW_SHARED    ///< the same with the access that the process gives its new files
};

enum class LockMode { SHARED, EXCLUSIVE };

/// The operating system as far as files are concerned: every access of the library to a file goes through
/// this interface, so that tests can put a disk there that fails, forgets and reorders. One call is one call
/// of the system: it may be cut short or interrupted (EINTR), which the callers deal with. Paths are bytes.
/// Results of 0 or more are success, negative ones are numbers of `errno` with their sign changed.
class IDisk {
public:
    IDisk() = default;
    IDisk(const IDisk&) = delete;
    IDisk& operator=(const IDisk&) = delete;
    virtual ~IDisk() = default;

    /// Gives a handle, to be closed by the caller. The last name of the path is not followed when it is a
    /// link and the file is to be new.
    virtual int Open(const std::string& path, OpenFor use) = 0;
    virtual int Close(int handle) = 0;
    /// Gives how many bytes came; 0 is the end of the file.
    virtual std::int64_t ReadAt(int handle, std::uint64_t offset, char* bytes, std::size_t size) = 0;
    /// The same where the handle stands, for what has no positions. Waits for the other end of a pipe.
    virtual std::int64_t ReadNext(int handle, char* bytes, std::size_t size) = 0;
    virtual std::int64_t WriteAt(int handle, std::uint64_t offset, const char* bytes, std::size_t size) = 0;
    virtual std::int64_t WriteNext(int handle, const char* bytes, std::size_t size) = 0;
    /// Brings a file, or the names in a folder, to the disk.
    virtual int Sync(int handle) = 0;
    virtual int Status(int handle, FileStatus& status) = 0;
    /// `follow`: of what a link points at, not of the link.
    virtual int StatusOf(const std::string& path, bool follow, FileStatus& status) = 0;
    virtual int SetOwner(int handle, std::uint32_t owner, std::uint32_t group) = 0;
    virtual int SetMode(int handle, std::uint32_t mode) = 0;
    /// Extended attributes with their values, access control lists among them.
    virtual int Attributes(int handle, std::vector<std::pair<std::string, std::string>>& attributes) = 0;
    virtual int SetAttribute(int handle, const std::string& name, const std::string& value) = 0;
    virtual int Rename(const std::string& from, const std::string& to) = 0;
    virtual int Remove(const std::string& path) = 0;
    virtual int RemoveFolder(const std::string& path) = 0;
    virtual int MakeFolder(const std::string& path) = 0;
    /// The names in a folder in the order of the file system, without "." and "..".
    virtual int List(const std::string& path, std::vector<std::string>& names) = 0;
    /// What a link points at.
    virtual int ReadLink(const std::string& path, std::string& target) = 0;
    /// Takes a lock, or fails with EWOULDBLOCK while another process holds it. A lock that the handle has is
    /// changed to the mode. Closing the handle ends it.
    virtual int TryLock(int handle, LockMode mode) = 0;
    /// The process that holds a lock on the file, as "kes, process 123"; empty when the system does not tell.
    virtual std::string LockHolder(int handle) = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    /// The folder for temporary files.
    virtual std::string TemporaryFolder() = 0;
    /// A name part that cannot be guessed, of letters and digits.
    virtual std::string RandomWord() = 0;
};

/// The disk in use: that of the operating system, unless a test has put another one there.
KES_API IDisk& Disk();

/// Puts another disk in place of the one in use for as long as the object lives. For tests; no file may be
/// open.
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
