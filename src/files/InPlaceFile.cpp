#include "files/InPlaceFile.h"

#include "files/OpenFile.h"

#include <utility>
#include <vector>

namespace VemoKesConfigTools::files {

struct InPlaceFile::State {
    FileLock lock;
    OpenFile file;
    std::uint64_t size = 0;
    std::vector<std::pair<std::uint64_t, std::string>> written;  ///< since the last `Sync`
};

InPlaceFile::InPlaceFile(const std::string& path, LockMode access) {
    // Locked before it is opened, so that the opened file is the one that was locked.
    const FileLock lock(path, access);
    OpenFile file(path, access == LockMode::EXCLUSIVE ? OpenFor::UPDATING : OpenFor::READING);
    const FileStatus status = file.Status();
    if (status.kind != FileKind::REGULAR && status.kind != FileKind::BLOCK_DEVICE)
        throw FileError(FileAction::OPEN, path, "it is neither a file nor a block device");
    mpState = std::make_unique<State>(State{lock, std::move(file), status.size, {}});
}

InPlaceFile::~InPlaceFile() = default;

std::uint64_t InPlaceFile::Size() const { return mpState->size; }

std::string InPlaceFile::Read(std::uint64_t offset, std::uint64_t size) const {
    return mpState->file.Read(offset, static_cast<std::size_t>(size));
}

void InPlaceFile::Write(std::uint64_t offset, std::string_view bytes) {
    mpState->file.Write(offset, bytes);
    mpState->written.emplace_back(offset, bytes);
}

void InPlaceFile::Sync() {
    mpState->file.Sync();
    for (const auto& [offset, bytes] : std::exchange(mpState->written, {})) {
        if (mpState->file.Read(offset, bytes.size()) == bytes) continue;
        throw FileError(FileAction::WRITE, mpState->file.Path(),
                        "the " + std::to_string(bytes.size()) + " bytes at " + std::to_string(offset) +
                            " do not read back as they were written");
    }
}

}  // namespace VemoKesConfigTools::files
