#include "files/PreparedFile.h"

#include "files/Files.h"

#include <cerrno>
#include <utility>

namespace VemoKesConfigTools::files {

namespace {

constexpr std::string_view ACCESS_LIST = "system.posix_acl_access";

/// Throws if replacing the target by a rename would not do what the user expects.
std::optional<FileStatus> CheckTarget(const std::string& path, bool force) {
    constexpr std::uint32_t OWNER_WRITES = 0200;
    const std::optional<FileStatus> old = Look(path);
    if (!old) return old;
    if (old->kind == FileKind::FOLDER) throw FileError(FileAction::WRITE, path, EISDIR);
    if (old->kind != FileKind::REGULAR) throw FileError(FileAction::WRITE, path, "it is not a regular file");
    if (force) return old;
    if (old->links > 1) {
        throw FileError(FileAction::REFUSED, path,
                        "has " + std::to_string(old->links) +
                            " hard links, and the others would keep the old content; nothing was written");
    }
    if ((old->mode & OWNER_WRITES) == 0)
        throw FileError(FileAction::REFUSED, path, "is write-protected; nothing was written");
    return old;
}

/// Limits the rights of the group to those of all other users.
std::uint32_t WithoutGroup(std::uint32_t mode) {
    constexpr std::uint32_t NOT_GROUP = 07707;
    constexpr int GROUP_SHIFT = 3;
    constexpr std::uint32_t EVERYBODY = 07;
    return (mode & NOT_GROUP) | (mode & ((mode & EVERYBODY) << GROUP_SHIFT));
}

/// Gives a new file the access rights of the old one. Where the system refuses a step, the rights are
/// narrowed: a different group, or one without its access list, must not get the rights of the old one.
void KeepAccess(const OpenFile& file, const FileStatus& old, const std::string& path,
                std::vector<std::string>& notes) {
    constexpr std::uint32_t SET_IDS = 06000;
    constexpr auto SAME = static_cast<std::uint32_t>(-1);
    std::uint32_t mode = old.mode;
    const FileStatus now = file.Status();
    if (now.owner != old.owner || now.group != old.group) {
        // Only a privileged process may give a file away; a group of which the user is a member may be set
        // without that, so it is tried alone.
        if (Disk().SetOwner(file.Handle(), old.owner, old.group) < 0) {
            mode &= ~SET_IDS;  // they would now act for another user
            notes.push_back(path + ": the owner could not be kept");
            if (now.group != old.group && Disk().SetOwner(file.Handle(), SAME, old.group) < 0) {
                mode = WithoutGroup(mode);
                notes.push_back(path + ": the group could not be kept");
            }
        }
    }
    std::vector<std::pair<std::string, std::string>> attributes;
    {
        // Read from the old file, which is still in place under this path.
        try {
            const OpenFile before(path, OpenFor::READING);
            if (Disk().Attributes(before.Handle(), attributes) < 0) attributes.clear();
        } catch (const FileError&) {
            notes.push_back(path + ": the extended attributes could not be read");
        }
    }
    // Access lists are set before the mode: with a list, the group bits of the mode are its mask.
    for (const auto& [name, value] : attributes) {
        if (Disk().SetAttribute(file.Handle(), name, value) == 0) continue;
        notes.emplace_back(path)
            .append(": the extended attribute ")
            .append(name)
            .append(" could not be kept");
        if (name == ACCESS_LIST) mode = WithoutGroup(mode);
    }
    if (Disk().SetMode(file.Handle(), mode) < 0) notes.push_back(path + ": the mode could not be kept");
}

}  // namespace

PreparedFile::PreparedFile(const std::string& target, std::string_view mark, std::string_view content,
                           bool force, std::vector<std::string>& notes)
    : mTarget(target), mOld(CheckTarget(target, force)), mTemporary(target, mark, /*isShared=*/!mOld) {
    const OpenFile& file = mTemporary.File();
    try {
        file.Write(0, content);
        if (mOld) {
            KeepAccess(file, *mOld, target, notes);
        } else {
            Disk().SetMode(file.Handle(), mTemporary.SharedMode());
        }
        // Synced before the caller renames it: otherwise a power cut could leave the new name on empty
        // content.
        file.Sync();
        if (file.Status().size != content.size() || file.ReadAll() != content)
            throw FileError(FileAction::WRITE, target, "it does not read back as it was written");
    } catch (const FileError& error) {
        // Name the target: the user does not know the temporary file.
        throw FileError(FileAction::WRITE, target, error.Cause());
    }
}

OpenFile PreparedFile::Rename() {
    const int failed = Uninterrupted([&] { return Disk().Rename(mTemporary.Path(), mTarget); });
    if (failed < 0) throw FileError(FileAction::WRITE, mTarget, -failed);
    return mTemporary.Keep();
}

}  // namespace VemoKesConfigTools::files
