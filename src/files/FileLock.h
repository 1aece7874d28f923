#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <chrono>
#include <memory>
#include <string>

namespace VemoKesConfigTools::files {

class OpenFile;

/// The default time to wait for a lock.
inline constexpr std::chrono::milliseconds LOCK_WAIT = std::chrono::seconds(10);

/// Locks a file or folder against other processes during its lifetime: readers share the lock, a writer
/// excludes all others. The lock is advisory, as `flock` is. For a file that does not exist yet, its folder
/// is locked. Within a process, a second lock on the same file joins the first. Pipes, and files on file
/// systems without locks, are not locked.
class KES_API FileLock {
public:
    /// Holds no lock.
    FileLock() = default;
    /// Waits for the lock. On timeout throws `FileError`, which names the holder if that can be determined.
    /// If the file was replaced during the wait, the new file is locked.
    FileLock(const std::string& path, LockMode mode, std::chrono::milliseconds wait = LOCK_WAIT);

    /// Extends the lock to a file, itself already locked, that has replaced the locked one under its name.
    void Adopt(OpenFile file) const;

private:
    struct Entry;
    struct Table;

    std::shared_ptr<Entry> mEntry;
};

}  // namespace VemoKesConfigTools::files
