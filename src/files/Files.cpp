#include "files/Files.h"

#include "files/OpenFile.h"

#include <cerrno>

namespace VemoKesConfigTools::files {

namespace {

/// Throws if the file is of a kind that cannot be read as bytes.
void CheckReadable(const OpenFile& file, const FileStatus& status, bool onlyRegular) {
    if (status.kind == FileKind::FOLDER) throw FileError(FileAction::READ, file.Path(), EISDIR);
    if (!onlyRegular || status.kind == FileKind::REGULAR) return;
    throw FileError(FileAction::READ, file.Path(), "it is not a regular file");
}

}  // namespace

FileContent ReadFile(const std::string& path, Readable what) {
    const OpenFile file(path, OpenFor::READING);
    FileContent content{{}, file.Status()};
    CheckReadable(file, content.status, what == Readable::REGULAR_FILES);
    content.bytes = file.ReadAll();
    return content;
}

std::string ReadStart(const std::string& path, std::size_t size) {
    const OpenFile file(path, OpenFor::READING);
    const FileStatus status = file.Status();
    CheckReadable(file, status, status.kind != FileKind::BLOCK_DEVICE);
    return file.ReadStart(size);
}

std::optional<FileStatus> Look(const std::string& path) {
    FileStatus status;
    const int failed = Uninterrupted([&] { return Disk().StatusOf(path, /*follow=*/true, status); });
    if (failed == 0) return status;
    if (failed == -ENOENT || failed == -ENOTDIR) return std::nullopt;
    throw FileError(FileAction::OPEN, path, -failed);
}

std::vector<std::string> ListFolder(const std::string& path) {
    std::vector<std::string> names;
    if (const int failed = Uninterrupted([&] {
            names.clear();
            return Disk().List(path, names);
        });
        failed < 0) {
        throw FileError(FileAction::OPEN, path, -failed);
    }
    return names;
}

void MakeFolder(const std::string& path) {
    const int failed = Uninterrupted([&] { return Disk().MakeFolder(path); });
    if (failed < 0) throw FileError(FileAction::WRITE, path, -failed);
}

std::string Join(const std::string& folder, std::string_view name) {
    std::string path = folder;
    if (!path.ends_with('/')) path += '/';
    return path.append(name);
}

void WriteThrough(const std::string& path, std::string_view bytes) {
    try {
        OpenFile file(path, OpenFor::WRITING);
        file.WriteNext(bytes);
        file.Close();
    } catch (const FileError& error) {
        // ENXIO comes from opening a pipe that has no reader; its text, "No such device", would mislead.
        if (error.Number() == ENXIO)
            throw FileError(FileAction::WRITE, path, "no program reads from the pipe");
        throw;
    }
}

}  // namespace VemoKesConfigTools::files
