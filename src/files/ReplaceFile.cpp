#include "files/ReplaceFile.h"

#include "files/PreparedFile.h"

#include <cerrno>

namespace VemoKesConfigTools::files {

namespace {

[[noreturn]] void FailOnChange(const std::string& path) {
    throw FileError(FileAction::CHANGED, path,
                    "was changed by another program in the meantime; nothing was written");
}

/// Detects changes by programs that do not take the lock. A change of theirs between this check and the
/// rename is lost, as with any program that replaces files.
void CheckUnchanged(const std::string& target, const ReplaceOptions& options) {
    if (options.isNew && Look(target)) FailOnChange(target);
    if (options.expected == nullptr) return;
    const FileStatus& before = options.expected->status;
    const std::optional<FileStatus> status = Look(target);
    // The status alone is not enough: a time stamp may be too coarse to show a change of the same length.
    const bool isSame = status && status->IsSameFile(before) && status->size == before.size &&
                        status->modified == before.modified;
    if (!isSame || ReadFile(target, Readable::REGULAR_FILES).bytes != options.expected->bytes)
        FailOnChange(target);
}

}  // namespace

std::string FollowLinks(const std::string& path) {
    constexpr int MOST_LINKS = 40;  // the limit of Linux
    std::string at = path;
    for (int links = 0; links < MOST_LINKS; ++links) {
        FileStatus status;
        std::string target;
        if (Disk().StatusOf(at, /*follow=*/false, status) < 0 || status.kind != FileKind::LINK) return at;
        if (const int failed = Disk().ReadLink(at, target); failed < 0)
            throw FileError(FileAction::OPEN, path, -failed);
        at = target.starts_with('/') ? target : Join(FolderOf(at), target);
    }
    throw FileError(FileAction::OPEN, path, ELOOP);
}

std::vector<std::string> ReplaceFile(const std::string& path, std::string_view content,
                                     const ReplaceOptions& options) {
    const std::string target = FollowLinks(path);
    const std::string folder = FolderOf(target);
    const FileLock lock(target, LockMode::EXCLUSIVE, options.lockWait);
    // Under the lock, so that they can only be left over from an interrupted save.
    ClearTemporaries(folder, NameOf(target), REPLACEMENT_MARK);
    std::vector<std::string> notes;
    PreparedFile prepared(target, REPLACEMENT_MARK, content, options.force, notes);
    // As late as possible, which leaves other programs the shortest time to change the file unnoticed.
    CheckUnchanged(target, options);
    lock.Adopt(prepared.Rename());
    try {
        // The rename is durable only once the folder is on the disk.
        SyncFolder(folder);
    } catch (const FileError& error) {
        throw FileError(FileAction::WRITE, path,
                        error.Cause() + "; the new content is in place, but may not survive a power cut");
    }
    return notes;
}

}  // namespace VemoKesConfigTools::files
