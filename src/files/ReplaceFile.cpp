#include "files/ReplaceFile.h"

#include "files/PreparedFile.h"

#include <cerrno>

namespace VemoKesConfigTools::files {

namespace {

[[noreturn]] void FailOnChange(const std::string& path) {
    throw FileError(FileAction::CHANGED, path,
                    "was changed by another program in the meantime; nothing was written");
}

/// Notices programs that know no locks. What they do between this and the rename is lost, as with any program
/// that replaces a file.
void CheckUnchanged(const std::string& target, const ReplaceOptions& options) {
    if (options.isNew && Look(target)) FailOnChange(target);
    if (options.expected == nullptr) return;
    const FileStatus& before = options.expected->status;
    const std::optional<FileStatus> status = Look(target);
    const bool isSame = status && status->IsSameFile(before) && status->size == before.size &&
                        status->modified == before.modified;
    if (!isSame || ReadFile(target, Readable::REGULAR_FILES).bytes != options.expected->bytes)
        FailOnChange(target);
}

}  // namespace

std::string FollowLinks(const std::string& path) {
    constexpr int MOST_LINKS = 40;  // as the system allows
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
    ClearTemporaries(folder, NameOf(target), REPLACEMENT_MARK);
    std::vector<std::string> notes;
    PreparedFile prepared(target, REPLACEMENT_MARK, content, options.force, notes);
    CheckUnchanged(target, options);
    lock.Adopt(prepared.Rename());
    try {
        SyncFolder(folder);
    } catch (const FileError& error) {
        throw FileError(FileAction::WRITE, path,
                        error.Cause() + "; the new content is there, but may not survive a power cut");
    }
    return notes;
}

}  // namespace VemoKesConfigTools::files
