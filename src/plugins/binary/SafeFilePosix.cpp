#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/SafeFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace VemoKesConfigTools {

namespace {

[[noreturn]] void Fail(std::string_view text, const std::string& path) {
    throw Refusal(text, path + ": " + std::strerror(errno));
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool WriteFile(const std::string& path, std::string_view content) {
    constexpr mode_t ACCESS = 0666;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, ACCESS);
    if (file < 0) return false;
    const bool whole = WriteAll(file, content) && fsync(file) == 0;
    const int reason = errno;
    const bool closed = close(file) == 0;
    if (!whole) errno = reason;
    return whole && closed;
}

/// Not every file system lets a folder be synced; the files themselves are whole in any case.
void SyncFolder(const std::filesystem::path& folder) {
    const int file = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    static_cast<void>(fsync(file) == 0);
    close(file);
}

}  // namespace

std::string ReadFile(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) Fail(STR_FILE_OPEN_ERR, path);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) Fail(STR_FILE_READ_ERR, path);
    return content;
}

FileReplacement::~FileReplacement() {
    for (const File& file : mFiles) unlink(file.temporary.c_str());
}

void FileReplacement::Add(const std::string& path, std::string_view content) {
    mFiles.push_back({path + ".tmp" + std::to_string(getpid()), path});
    if (!WriteFile(mFiles.back().temporary, content)) Fail(STR_FILE_WRITE_ERR, path);
}

void FileReplacement::Commit() {
    for (; !mFiles.empty(); mFiles.erase(mFiles.begin())) {
        const File& file = mFiles.front();
        if (std::rename(file.temporary.c_str(), file.path.c_str()) != 0) Fail(STR_FILE_WRITE_ERR, file.path);
        SyncFolder(std::filesystem::path(file.path).parent_path());
    }
}

}  // namespace VemoKesConfigTools
