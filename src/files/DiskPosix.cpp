#include "files/Disk.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace VemoKesConfigTools::files {

namespace {

constexpr mode_t PRIVATE = 0600;
constexpr mode_t SHARED = 0666;
constexpr mode_t MODE_BITS = 07777;

int Result(int result) { return result < 0 ? -errno : result; }

FileKind KindOf(mode_t mode) {
    if (S_ISDIR(mode)) return FileKind::FOLDER;
    if (S_ISBLK(mode)) return FileKind::BLOCK_DEVICE;
    if (S_ISCHR(mode)) return FileKind::CHARACTER_DEVICE;
    if (S_ISFIFO(mode)) return FileKind::PIPE;
    if (S_ISSOCK(mode)) return FileKind::SOCKET;
    return S_ISLNK(mode) ? FileKind::LINK : FileKind::REGULAR;
}

FileStatus ToStatus(const struct stat& from) {
    constexpr std::int64_t NANOSECONDS = 1'000'000'000;
    FileStatus status;
    status.kind = KindOf(from.st_mode);
    status.device = from.st_dev;
    status.inode = from.st_ino;
    status.size = from.st_size > 0 ? static_cast<std::uint64_t>(from.st_size) : 0;
    status.links = from.st_nlink;
    status.modified = from.st_mtim.tv_sec * NANOSECONDS + from.st_mtim.tv_nsec;
    status.mode = from.st_mode & MODE_BITS;
    status.owner = from.st_uid;
    status.group = from.st_gid;
    return status;
}

class PosixDisk final : public IDisk {
public:
    int Open(const std::string& path, OpenFor use) override {
        switch (use) {
            // O_NONBLOCK: opening a pipe must not wait for its other end. `SetWaiting` clears the flag before
            // data is transferred.
            case OpenFor::READING:
                return OpenAt(path, O_RDONLY | O_NONBLOCK, 0);
            case OpenFor::UPDATING:
                return OpenAt(path, O_RDWR | O_NONBLOCK, 0);
            case OpenFor::WRITING:
                return OpenAt(path, O_WRONLY | O_NONBLOCK, 0);
            case OpenFor::TRUNCATING:
                return OpenAt(path, O_WRONLY | O_CREAT | O_TRUNC, SHARED);
            case OpenFor::NEW_PRIVATE:
                return OpenAt(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, PRIVATE);
            case OpenFor::NEW_SHARED:
                return OpenAt(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, SHARED);
        }
        return -EINVAL;
    }

    int Close(int handle) override { return Result(close(handle)); }

    std::int64_t ReadAt(int handle, std::uint64_t offset, char* bytes, std::size_t size) override {
        const ssize_t came = pread(handle, bytes, size, static_cast<off_t>(offset));
        return came < 0 ? -errno : came;
    }

    std::int64_t ReadNext(int handle, char* bytes, std::size_t size) override {
        SetWaiting(handle);
        // Without the wait, a pipe that has no writer yet would read as end of file.
        pollfd ready{handle, POLLIN, 0};
        if (poll(&ready, 1, -1) < 0) return -errno;
        const ssize_t came = read(handle, bytes, size);
        return came < 0 ? -errno : came;
    }

    std::int64_t WriteAt(int handle, std::uint64_t offset, const char* bytes, std::size_t size) override {
        const ssize_t written = pwrite(handle, bytes, size, static_cast<off_t>(offset));
        return written < 0 ? -errno : written;
    }

    std::int64_t WriteNext(int handle, const char* bytes, std::size_t size) override {
        SetWaiting(handle);
        const ssize_t written = write(handle, bytes, size);
        return written < 0 ? -errno : written;
    }

    int Sync(int handle) override { return Result(fsync(handle)); }

    int Status(int handle, FileStatus& status) override {
        struct stat found {};
        if (fstat(handle, &found) != 0) return -errno;
        status = ToStatus(found);
        if (status.kind != FileKind::BLOCK_DEVICE) return 0;
        // For a block device `st_size` is 0.
        const off_t size = lseek(handle, 0, SEEK_END);
        if (size < 0) return -errno;
        status.size = static_cast<std::uint64_t>(size);
        return 0;
    }

    int StatusOf(const std::string& path, bool follow, FileStatus& status) override {
        struct stat found {};
        if ((follow ? stat : lstat)(path.c_str(), &found) != 0) return -errno;
        status = ToStatus(found);
        return 0;
    }

    int SetOwner(int handle, std::uint32_t owner, std::uint32_t group) override {
        return Result(fchown(handle, owner, group));
    }

    int SetMode(int handle, std::uint32_t mode) override { return Result(fchmod(handle, mode)); }

    int Attributes(int handle, std::vector<std::pair<std::string, std::string>>& attributes) override {
        // Linux limits the list of names and each value to 64 KiB.
        constexpr std::size_t MOST = 65536;
        std::string names(MOST, '\0');
        const ssize_t size = flistxattr(handle, names.data(), names.size());
        if (size < 0) return -errno;
        names.resize(static_cast<std::size_t>(size));
        for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
            const std::string name(names.c_str() + at);
            std::string value(MOST, '\0');
            const ssize_t length = fgetxattr(handle, name.c_str(), value.data(), value.size());
            if (length < 0) return -errno;
            value.resize(static_cast<std::size_t>(length));
            attributes.emplace_back(name, std::move(value));
        }
        return 0;
    }

    int SetAttribute(int handle, const std::string& name, const std::string& value) override {
        return Result(fsetxattr(handle, name.c_str(), value.data(), value.size(), 0));
    }

    int Rename(const std::string& from, const std::string& to) override {
        return Result(rename(from.c_str(), to.c_str()));
    }

    int Remove(const std::string& path) override { return Result(unlink(path.c_str())); }
    int RemoveFolder(const std::string& path) override { return Result(rmdir(path.c_str())); }
    int MakeFolder(const std::string& path) override {
        constexpr mode_t ACCESS = 0777;
        return Result(mkdir(path.c_str(), ACCESS));
    }

    int List(const std::string& path, std::vector<std::string>& names) override {
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
        if (!folder) return -errno;
        for (;;) {
            errno = 0;  // the only way to tell an error of `readdir` from the end
            const dirent* const entry = readdir(folder.get());
            if (entry == nullptr) return -errno;
            const std::string name(entry->d_name);
            if (name != "." && name != "..") names.push_back(name);
        }
    }

    int ReadLink(const std::string& path, std::string& target) override {
        constexpr std::size_t MOST = 65536;
        target.resize(MOST);
        const ssize_t size = readlink(path.c_str(), target.data(), target.size());
        if (size < 0) return -errno;
        target.resize(static_cast<std::size_t>(size));
        return 0;
    }

    int TryLock(int handle, LockMode mode) override {
        return Result(flock(handle, (mode == LockMode::EXCLUSIVE ? LOCK_EX : LOCK_SH) | LOCK_NB));
    }

    std::string LockHolder(int handle) override;

    void Sleep(std::uint32_t milliseconds) override {
        constexpr std::uint32_t THOUSAND = 1000;
        constexpr long MILLION = 1'000'000;
        const timespec time{milliseconds / THOUSAND, static_cast<long>(milliseconds % THOUSAND) * MILLION};
        // A signal may end the sleep early: callers poll, so that does no harm.
        nanosleep(&time, nullptr);
    }

    std::string TemporaryFolder() override {
        // A set-user-id host must not let its caller choose where files are created.
        const char* const chosen = secure_getenv("TMPDIR");
        return chosen != nullptr && *chosen == '/' ? chosen : "/tmp";
    }

    std::string RandomWord() override {
        constexpr char LETTERS[] = "abcdefghijklmnopqrstuvwxyz0123456789";
        constexpr std::size_t COUNT = sizeof LETTERS - 1;
        std::array<unsigned char, 8> bytes{};
        // A request this small is never cut short. If it fails, the word is a constant; the caller retries
        // when the name exists.
        static_cast<void>(getrandom(bytes.data(), bytes.size(), 0) < 0);
        std::string word;
        for (const unsigned char byte : bytes) word += LETTERS[byte % COUNT];
        return word;
    }

private:
    static int OpenAt(const std::string& path, int flags, mode_t mode) {
        return Result(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode));
    }

    /// Clears O_NONBLOCK: opening a pipe does not wait, but reading and writing it do.
    static void SetWaiting(int handle) {
        const int flags = fcntl(handle, F_GETFL);
        if (flags >= 0 && (flags & O_NONBLOCK) != 0) fcntl(handle, F_SETFL, flags & ~O_NONBLOCK);
    }
};

/// The name of a process's program; empty if it cannot be determined.
std::string ProgramOf(long process) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(
        std::fopen(("/proc/" + std::to_string(process) + "/comm").c_str(), "re"), std::fclose);
    if (!file) return {};
    std::array<char, 64> name{};
    const std::size_t size = std::fread(name.data(), 1, name.size(), file.get());
    const std::string text(name.data(), size);
    return text.substr(0, text.find('\n'));
}

std::string PosixDisk::LockHolder(int handle) {
    struct stat file {};
    const std::unique_ptr<FILE, int (*)(FILE*)> locks(std::fopen("/proc/locks", "re"), std::fclose);
    if (!locks || fstat(handle, &file) != 0) return {};
    std::array<char, 256> line{};
    while (std::fgets(line.data(), line.size(), locks.get()) != nullptr) {
        long process = 0;
        unsigned major = 0;
        unsigned minor = 0;
        unsigned long inode = 0;
        // "1: FLOCK  ADVISORY  WRITE 123 08:01:4711 0 EOF"; the line of a waiting process has "->" after the
        // first number and does not match.
        if (std::sscanf(line.data(), "%*d: FLOCK %*s %*s %ld %x:%x:%lu", &process, &major, &minor, &inode) !=
            4)
            continue;
        if (inode != file.st_ino || major != ::major(file.st_dev) || minor != ::minor(file.st_dev)) continue;
        const std::string program = ProgramOf(process);
        return (program.empty() ? "" : program + ", ") + "process " + std::to_string(process);
    }
    return {};
}

}  // namespace

IDisk& SystemDisk() {
    static PosixDisk disk;
    return disk;
}

}  // namespace VemoKesConfigTools::files
