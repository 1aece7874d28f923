#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <chrono>
#include <memory>
#include <string>

namespace VemoKesConfigTools::files {

class OpenFile;

/// How long a lock is waited for where nobody says otherwise.
inline constexpr std::chrono::milliseconds LOCK_WAIT = std::chrono::seconds(10);

/// Keeps other processes from a file or folder for as long as it lives: readers share, a writer excludes all.
/// The lock is advisory, as `flock` is. A file that is to be created is locked by its folder. Within a
/// process a second lock on the same file joins the first one. Pipes and file systems without locks have
/// none.
class KES_API FileLock {
public:
    /// Holds nothing.
    FileLock() = default;
    /// Waits for the lock. Throws `FileError`, which names the holder where the system tells it, when the
    /// time is over. After the wait the lock is on the file that has the name by then.
    FileLock(const std::string& path, LockMode mode, std::chrono::milliseconds wait = LOCK_WAIT);

    /// Extends the lock to a file that is about to take the place of the locked one, and already locked.
    void Adopt(OpenFile file) const;

private:
    struct Entry;
    struct Table;

    std::shared_ptr<Entry> mEntry;
};

}  // namespace VemoKesConfigTools::files
