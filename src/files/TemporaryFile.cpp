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

/// What the name of a temporary file begins with. A long name loses its end, so that there is room.
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
            // What the user knows is the file that was to be written.
            throw FileError(FileAction::WRITE, path, error.Number());
        }
    }
    static_cast<void>(Disk().TryLock(mFile->Handle(), LockMode::EXCLUSIVE));
    if (!isShared) return;
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
    // What cannot be listed is not cleared; whether it can be written will show.
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
            const int busy = Disk().TryLock(left.Handle(), LockMode::EXCLUSIVE);
            if (busy != -EWOULDBLOCK) Disk().Remove(path);
        } catch (const FileError&) {
            // Somebody else's; it is in nobody's way.
        }
    }
}

}  // namespace VemoKesConfigTools::files
