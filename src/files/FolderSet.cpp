#include "files/FolderSet.h"

#include "files/FileLock.h"
#include "files/Files.h"
#include "files/FolderJournal.h"
#include "files/OpenFile.h"
#include "files/PreparedFile.h"
#include "files/ReplaceFile.h"
#include "files/SignalCleanup.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <utility>

namespace VemoKesConfigTools::files {

std::vector<SetEntry> ListSet(const std::string& folder, std::string_view ending) {
    std::vector<std::string> names = ListFolder(folder);
    // Read after the listing: if a save is committed in between, the journal still names all its files.
    const std::optional<FolderJournal> journal = ReadJournal(folder);
    std::map<std::string, std::string> put;
    std::set<std::string> removed;
    if (journal) {
        for (const FolderJournal::Put& one : journal->puts) put.emplace(one.name, one.temporary);
        removed.insert(journal->removed.begin(), journal->removed.end());
        const std::set<std::string> listed(names.begin(), names.end());
        for (const FolderJournal::Put& one : journal->puts) {
            if (!listed.contains(one.name)) names.push_back(one.name);
        }
    }
    std::vector<SetEntry> entries;
    for (std::string& name : names) {
        if (!name.ends_with(ending) || removed.contains(name)) continue;
        const auto temporary = put.find(name);
        std::string path = Join(folder, temporary == put.end() ? name : temporary->second);
        entries.push_back({std::move(name), std::move(path)});
    }
    return entries;
}

std::string ReadSetFile(const std::string& folder, const SetEntry& entry) {
    const std::string final = Join(folder, entry.name);
    try {
        return ReadFile(entry.path, Readable::REGULAR_FILES).bytes;
    } catch (const FileError& error) {
        // Missing under its temporary name: a writer has renamed it since the listing.
        if (error.Number() != ENOENT || entry.path == final)
            throw FileError(error.Action(), final, error.Cause());
    }
    return ReadFile(final, Readable::REGULAR_FILES).bytes;
}

namespace {

/// Commits a save by writing its journal. Returns the new files, locked.
std::vector<OpenFile> KeepAndCommit(const std::string& folder,
                                    const std::vector<std::unique_ptr<PreparedFile>>& prepared,
                                    const FolderJournal& journal) {
    // Meanwhile nobody would remove the new files: they are kept already, and no journal names them yet.
    const SignalsHeld held;
    // Their locks are held until the end so that no other process clears them.
    std::vector<OpenFile> locked;
    locked.reserve(prepared.size());
    for (const auto& file : prepared) locked.push_back(file->Keep());
    try {
        ReplaceFile(Join(folder, JOURNAL_NAME), EncodeJournal(journal));
    } catch (const FileError&) {
        if (!Look(Join(folder, JOURNAL_NAME))) {
            for (const auto& file : prepared) Disk().Remove(file->TemporaryPath());
            throw;
        }
        // The journal was renamed, so the save is committed; an error of the folder will recur in its
        // finishing.
    }
    return locked;
}

}  // namespace

struct SetWriter::State {
    std::string folder;
    FileLock lock;
    bool isNew = false;
};

SetWriter::SetWriter(const std::string& folder) : mpState(std::make_unique<State>()) {
    mpState->folder = folder;
    const FileLock lock(folder, LockMode::EXCLUSIVE);
    if (!Look(folder)) {
        const int failed = Uninterrupted([&] { return Disk().MakeFolder(folder); });
        if (failed < 0 && failed != -EEXIST) throw FileError(FileAction::OPEN, folder, -failed);
        mpState->isNew = failed == 0;
    }
    const std::optional<FileStatus> status = Look(folder);
    if (!status || status->kind != FileKind::FOLDER)
        throw FileError(FileAction::OPEN, folder, status ? ENOTDIR : ENOENT);
    // If the folder was missing, the first lock was on its parent.
    mpState->lock = FileLock(folder, LockMode::EXCLUSIVE);
    // The journal first: the temporary files that it lists hold committed content and must not be cleared.
    if (const auto journal = ReadJournal(folder)) FinishJournal(folder, *journal);
    ClearTemporaries(folder, {}, SET_MARK);
    ClearTemporaries(folder, JOURNAL_NAME, REPLACEMENT_MARK);
}

SetWriter::~SetWriter() {
    if (mpState->isNew) Disk().RemoveFolder(mpState->folder);
}

std::vector<std::string> SetWriter::Commit(const SetChange& change) {
    const std::string& folder = mpState->folder;
    std::vector<std::string> notes;
    std::vector<std::unique_ptr<PreparedFile>> prepared;
    FolderJournal journal;
    journal.removed = change.removed;
    for (const SetFile& file : change.files) {
        const std::string target = Join(folder, file.name);
        if (FollowLinks(target) != target)
            throw FileError(FileAction::REFUSED, target, "is a symbolic link; nothing was written");
        prepared.push_back(
            std::make_unique<PreparedFile>(target, SET_MARK, file.content, /*force=*/false, notes));
        journal.puts.push_back({file.name, NameOf(prepared.back()->TemporaryPath())});
    }
    // The temporary names must be on the disk before a journal that refers to them.
    SyncFolder(folder);
    if (mpState->isNew) SyncFolder(FolderOf(folder));
    const std::vector<OpenFile> locked = KeepAndCommit(folder, prepared, journal);
    mpState->isNew = false;
    try {
        FinishJournal(folder, journal);
    } catch (const FileError& error) {
        throw FileError(
            error.Action(), error.Path(),
            error.Cause() + "; the save is committed nevertheless, and the next save completes it");
    }
    return notes;
}

}  // namespace VemoKesConfigTools::files
