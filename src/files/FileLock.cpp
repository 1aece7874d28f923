#include "files/FileLock.h"

#include "files/Files.h"
#include "files/OpenFile.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace VemoKesConfigTools::files {

/// A lock that the process holds; closing the file releases it.
struct FileLock::Entry {
    OpenFile file;
    LockMode mode;
    std::shared_ptr<Entry> successor;  ///< the file that has replaced this one; kept locked along with it
};

/// All locks of the process, by the identity of their files. `flock` treats two descriptors of one process as
/// strangers: a second lock through its own descriptor would wait for the first forever.
struct FileLock::Table {
    using Identity = std::pair<std::uint64_t, std::uint64_t>;

    std::mutex mutex;
    std::map<Identity, std::weak_ptr<Entry>> entries;

    static Table& Ref() {
        // Never destroyed: static objects may release their locks at exit, in any order.
        static Table& table = *new Table;
        return table;
    }

    static Identity IdentityOf(const FileStatus& status) { return {status.device, status.inode}; }

    std::shared_ptr<Entry> Find(const FileStatus& status) {
        const auto found = entries.find(IdentityOf(status));
        return found == entries.end() ? nullptr : found->second.lock();
    }

    std::shared_ptr<Entry> Add(OpenFile file, LockMode mode) {
        std::erase_if(entries, [](const auto& entry) { return entry.second.expired(); });
        const FileStatus status = file.Status();
        auto entry = std::make_shared<Entry>(Entry{std::move(file), mode, nullptr});
        entries[IdentityOf(status)] = entry;
        return entry;
    }
};

namespace {

enum class Outcome { TAKEN, BUSY, NO_LOCKS };

Outcome Try(const OpenFile& file, LockMode mode) {
    const int failed = Uninterrupted([&] { return Disk().TryLock(file.Handle(), mode); });
    if (failed == 0) return Outcome::TAKEN;
    return failed == -EWOULDBLOCK ? Outcome::BUSY : Outcome::NO_LOCKS;
}

bool CanBeLocked(FileKind kind) {
    return kind == FileKind::REGULAR || kind == FileKind::FOLDER || kind == FileKind::BLOCK_DEVICE;
}

/// The path to lock: that of the file, or of its folder if the file does not exist.
std::string LockedPath(const std::string& path) { return Look(path) ? path : FolderOf(path); }

/// Empty if the file cannot be opened: the caller's own read or write then reports why.
std::optional<OpenFile> OpenForLock(const std::string& path) {
    try {
        return OpenFile(path, OpenFor::READING);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

std::string TextOf(std::chrono::milliseconds wait) {
    constexpr int THOUSAND = 1000;
    const auto count = wait.count();
    return count % THOUSAND == 0 ? std::to_string(count / THOUSAND) + " s" : std::to_string(count) + " ms";
}

}  // namespace

FileLock::FileLock(const std::string& path, LockMode mode, std::chrono::milliseconds wait) {
    constexpr std::uint32_t STEP = 10;
    constexpr std::chrono::milliseconds STEP_TIME(STEP);
    for (std::chrono::milliseconds waited(0);; waited += STEP_TIME) {
        const std::string locked = LockedPath(path);
        const std::optional<FileStatus> status = Look(locked);
        if (!status || !CanBeLocked(status->kind)) return;
        std::string holder;
        {
            Table& table = Table::Ref();
            const std::lock_guard guard(table.mutex);
            std::shared_ptr<Entry> held = table.Find(*status);
            // A shared lock that is to become exclusive must ask the system: other processes may share it.
            const bool joins = held && (held->mode == LockMode::EXCLUSIVE || mode == LockMode::SHARED);
            if (joins) {
                mEntry = std::move(held);
                return;
            }
            if (held) {
                if (Try(held->file, mode) != Outcome::BUSY) {
                    held->mode = mode;
                    mEntry = std::move(held);
                    return;
                }
                holder = Disk().LockHolder(held->file.Handle());
            } else {
                std::optional<OpenFile> file = OpenForLock(locked);
                if (!file) return;
                const Outcome outcome = Try(*file, mode);
                if (outcome == Outcome::NO_LOCKS) return;
                if (outcome == Outcome::TAKEN) {
                    // The previous holder may have replaced the file: the lock would then be on a file that
                    // no longer has this name. Start over with the one that has.
                    const std::optional<FileStatus> now = Look(LockedPath(path));
                    if (!now || !now->IsSameFile(file->Status())) continue;
                    mEntry = table.Add(std::move(*file), mode);
                    return;
                }
                holder = Disk().LockHolder(file->Handle());
            }
        }
        // The table's mutex is released here: other threads may lock files while this one waits.
        if (waited >= wait) {
            throw FileError(
                FileAction::LOCK, path,
                "is locked by " + (holder.empty() ? "another process" : holder) + "; waited " + TextOf(wait));
        }
        Disk().Sleep(STEP);
    }
}

void FileLock::Adopt(OpenFile file) const {
    if (!mEntry) return;
    Table& table = Table::Ref();
    const std::lock_guard guard(table.mutex);
    // A lock that is kept over several replacements holds one file for each of them.
    Entry* last = mEntry.get();
    while (last->successor) last = last->successor.get();
    last->successor = table.Add(std::move(file), LockMode::EXCLUSIVE);
}

}  // namespace VemoKesConfigTools::files
