#include "files/OpenFile.h"

#include <algorithm>

namespace VemoKesConfigTools::files {

OpenFile::OpenFile(const std::string& path, OpenFor use)
    : mPath(path), mHandle(Uninterrupted([&] { return Disk().Open(path, use); })) {
    if (mHandle < 0) throw FileError(FileAction::OPEN, path, -mHandle);
}

OpenFile::OpenFile(OpenFile&& other) noexcept
    : mPath(std::move(other.mPath)), mHandle(std::exchange(other.mHandle, -1)) {}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept {
    std::swap(mPath, other.mPath);
    std::swap(mHandle, other.mHandle);
    return *this;
}

OpenFile::~OpenFile() {
    if (mHandle >= 0) Disk().Close(mHandle);
}

FileStatus OpenFile::Status() const {
    FileStatus status;
    if (const int failed = Disk().Status(mHandle, status); failed < 0)
        throw FileError(FileAction::OPEN, mPath, -failed);
    return status;
}

std::string OpenFile::ReadAll() const {
    constexpr std::size_t BLOCK = 65536;
    const FileStatus status = Status();
    const bool isRegular = status.kind == FileKind::REGULAR;
    // One byte more than the size, so that the end of the file is seen without resizing. A file that grows
    // while it is read is still read to its end.
    std::string bytes(isRegular ? static_cast<std::size_t>(status.size) + 1 : BLOCK, '\0');
    std::size_t size = 0;
    for (;;) {
        if (size == bytes.size()) bytes.resize(size + std::max(size, BLOCK));
        const std::int64_t came = Uninterrupted([&] {
            return isRegular ? Disk().ReadAt(mHandle, size, bytes.data() + size, bytes.size() - size)
                             : Disk().ReadNext(mHandle, bytes.data() + size, bytes.size() - size);
        });
        if (came < 0) throw FileError(FileAction::READ, mPath, static_cast<int>(-came));
        if (came == 0) break;
        size += static_cast<std::size_t>(came);
    }
    if (isRegular && size < status.size) {
        throw FileError(
            FileAction::READ, mPath,
            "it ended after " + std::to_string(size) + " of " + std::to_string(status.size) + " bytes");
    }
    bytes.resize(size);
    return bytes;
}

std::string OpenFile::ReadStart(std::size_t size) const {
    return Read(0, static_cast<std::size_t>(std::min<std::uint64_t>(size, Status().size)));
}

std::string OpenFile::Read(std::uint64_t offset, std::size_t size) const {
    std::string bytes(size, '\0');
    for (std::size_t done = 0; done < size;) {
        const std::int64_t came = Uninterrupted(
            [&] { return Disk().ReadAt(mHandle, offset + done, bytes.data() + done, size - done); });
        if (came < 0) throw FileError(FileAction::READ, mPath, static_cast<int>(-came));
        // The size was checked before, so the file has been truncated since.
        if (came == 0) throw FileError(FileAction::READ, mPath, "the file ends too early");
        done += static_cast<std::size_t>(came);
    }
    return bytes;
}

void OpenFile::Write(std::uint64_t offset, std::string_view bytes) const {
    while (!bytes.empty()) {
        const std::int64_t written =
            Uninterrupted([&] { return Disk().WriteAt(mHandle, offset, bytes.data(), bytes.size()); });
        if (written < 0) throw FileError(FileAction::WRITE, mPath, static_cast<int>(-written));
        if (written == 0) throw FileError(FileAction::WRITE, mPath, "the device takes no more bytes");
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

void OpenFile::WriteNext(std::string_view bytes) const {
    while (!bytes.empty()) {
        const std::int64_t written =
            Uninterrupted([&] { return Disk().WriteNext(mHandle, bytes.data(), bytes.size()); });
        if (written < 0) throw FileError(FileAction::WRITE, mPath, static_cast<int>(-written));
        if (written == 0) throw FileError(FileAction::WRITE, mPath, "the device takes no more bytes");
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void OpenFile::Sync() const {
    const int failed = Uninterrupted([&] { return Disk().Sync(mHandle); });
    // EINVAL, ENOTSUP and EROFS: this kind of file has no sync. Anything else, above all EIO and ENOSPC,
    // means that data may be lost.
    if (failed == 0 || failed == -EINVAL || failed == -ENOTSUP || failed == -EROFS) return;
    throw FileError(FileAction::WRITE, mPath, -failed);
}

void OpenFile::Close() {
    const int failed = Disk().Close(std::exchange(mHandle, -1));
    // After EINTR the descriptor is closed nevertheless; closing it again could hit another file.
    if (failed < 0 && failed != -EINTR) throw FileError(FileAction::WRITE, mPath, -failed);
}

void SyncFolder(const std::string& path) { OpenFile(path, OpenFor::READING).Sync(); }

namespace {

/// Turns "a/b/" into "a/b"; "/" stays.
std::string_view WithoutLastSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
}

}  // namespace

std::string FolderOf(const std::string& path) {
    const std::string_view name = WithoutLastSlashes(path);
    const std::size_t slash = name.find_last_of('/');
    if (slash == std::string_view::npos) return ".";
    return slash == 0 ? "/" : std::string(name.substr(0, slash));
}

std::string NameOf(const std::string& path) {
    const std::string_view name = WithoutLastSlashes(path);
    return std::string(name.substr(name.find_last_of('/') + 1));
}

}  // namespace VemoKesConfigTools::files
