#include "files/TemporaryFile.h"

#include "files/Files.h"
#include "files/SignalCleanup.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VemoKesConfigTools::files {

namespace {

constexpr std::size_t WORD_SIZE = 8;  // of `IDisk::RandomWord`
constexpr std::size_t LONGEST_NAME = 255;
constexpr std::uint32_t PRIVATE = 0600;

/// The start of a temporary file's name. A long file name is truncated to make room for the rest.
std::string StartFor(std::string_view name, std::string_view mark) {
    const std::size_t room = LONGEST_NAME - WORD_SIZE - mark.size() - 1;
    return "." + std::string(name.substr(0, room)) + std::string(mark);
}

bool IsWord(std::string_view text) {
    return text.size() == WORD_SIZE && std::ranges::all_of(text, [](char one) {
               return (one >= 'a' && one <= 'z') || (one >= '0' && one <= '9');
           });
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& path, std::string_view mark, bool isShared) {
    constexpr int MOST_TRIES = 100;
    const std::string start = Join(FolderOf(path), StartFor(NameOf(path), mark));
    for (int tries = 1; !mFile; ++tries) {
        const SignalsHeld held;
        mPath = start + Disk().RandomWord();
        try {
            mFile.emplace(mPath, isShared ? OpenFor::NEW_SHARED : OpenFor::NEW_PRIVATE);
            AddForCleanup(mPath);
        } catch (const FileError& error) {
            if (error.Number() == EEXIST && tries < MOST_TRIES) continue;
            // Name the target: the user does not know the temporary file.
            throw FileError(FileAction::WRITE, path, error.Number());
        }
    }
    static_cast<void>(Disk().TryLock(mFile->Handle(), LockMode::EXCLUSIVE));
    if (!isShared) return;
    // The umask cannot be read without changing it for the whole process, so the mode that the system gave
    // the file tells it. The file has no content yet while it is shared.
    mSharedMode = mFile->Status().mode;
    Disk().SetMode(mFile->Handle(), PRIVATE);
}

TemporaryFile::~TemporaryFile() {
    if (!mIsOwned) return;
    RemoveFromCleanup(mPath);
    Disk().Remove(mPath);
}

OpenFile TemporaryFile::Keep() {
    RemoveFromCleanup(mPath);
    mIsOwned = false;
    return std::move(*mFile);
}

bool IsTemporaryFor(std::string_view temporary, std::string_view name, std::string_view mark) {
    const std::string start = StartFor(name, mark);
    return temporary.starts_with(start) && IsWord(temporary.substr(start.size()));
}

void ClearTemporaries(const std::string& folder, std::string_view name, std::string_view mark) {
    std::vector<std::string> names;
    // Not an error here: if the folder is unusable, the write that follows reports it.
    if (Disk().List(folder, names) < 0) return;
    for (const std::string& found : names) {
        const std::size_t at = found.rfind(mark);
        if (at == std::string::npos || at == 0) continue;
        if (!IsTemporaryFor(found, name.empty() ? std::string_view(found).substr(1, at - 1) : name, mark))
            continue;
        const std::string path = Join(folder, found);
        FileStatus status;
        if (Disk().StatusOf(path, /*follow=*/false, status) < 0 || status.kind != FileKind::REGULAR) continue;
        try {
            const OpenFile left(path, OpenFor::READING);
            // A lock that can be taken shows that the process which made the file has ended.
            const int busy = Disk().TryLock(left.Handle(), LockMode::EXCLUSIVE);
            if (busy != -EWOULDBLOCK) Disk().Remove(path);
        } catch (const FileError&) {
            // Another user's file; leaving it does no harm.
        }
    }
}

}  // namespace VemoKesConfigTools::files
