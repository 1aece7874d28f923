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
    /// Also replaces a file that its owner may not write, and one that has other names, which keep the old
    /// content.
    bool force = false;
    /// What the file is to be still; null for whatever it is by then. Not owned.
    const FileContent* expected = nullptr;
    /// There is to be no file yet.
    bool isNew = false;
    std::chrono::milliseconds lockWait = LOCK_WAIT;
};

/// Gives a file a new content in one step: whatever happens, its path leads to the whole old content or to
/// the whole new one. The content is written to a private file beside it, brought to the disk, read back and
/// compared, and takes the name of the old file, all of it under the lock of the file.
///
/// Links are followed. A new file gets the access that the process gives new files; a replaced one keeps
/// mode, owner, group and extended attributes as far as the system allows, and never becomes accessible to
/// more users. Gives a note for each thing that could not be kept. Throws `FileError`; the file is then as it
/// was, unless the text says otherwise.
KES_API std::vector<std::string> ReplaceFile(const std::string& path, std::string_view content,
                                             const ReplaceOptions& options = {});

/// The path of the file that a path leads to by links, whether it is there or not.
KES_API std::string FollowLinks(const std::string& path);

}  // namespace VemoKesConfigTools::files
