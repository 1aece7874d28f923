#pragma once

#include "files/Disk.h"
#include "files/FileError.h"
#include "files/FileLock.h"
#include "files/Files.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

struct ReplaceOptions {
    /// Also replaces a file that is write-protected for its owner, and one that has other hard links, which
    /// keep the old content.
    bool force = false;
    /// Fails if the file no longer has this content; null to skip the check. Not owned.
    const FileContent* expected = nullptr;
    /// Fails if the file already exists.
    bool isNew = false;
    std::chrono::milliseconds lockWait = LOCK_WAIT;
};

/// Replaces the content of a file atomically: even after a crash or power cut, the path leads to the complete
/// old content or to the complete new one. The content is written to a private file in the same folder,
/// synced, read back and compared, and renamed to the target, all under the lock of the target.
///
/// Links are followed. A new file gets the default access of new files (umask); a replaced one keeps mode,
/// owner, group and extended attributes as far as the system allows, and never becomes accessible to more
/// users. Returns a note for each attribute that could not be kept. Throws `FileError`; the file is then
/// unchanged unless the message says otherwise.
KES_API std::vector<std::string> ReplaceFile(const std::string& path, std::string_view content,
                                             const ReplaceOptions& options = {});

/// Resolves links in the last component of a path. The file itself need not exist.
KES_API std::string FollowLinks(const std::string& path);

}  // namespace VemoKesConfigTools::files
