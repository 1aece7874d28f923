#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/ImageFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VemoKesConfigTools {

namespace {

[[noreturn]] void Fail(std::string_view text) { throw Refusal(text, std::strerror(errno)); }

int OpenFile(const std::string& path, ImageFile::Access access) {
    // Without waiting: a pipe would keep the caller for ever.
    const int flags = (access == ImageFile::Access::Writing ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
    for (;;) {
        const int file = open(path.c_str(), flags);
        if (file >= 0) return file;
        if (errno != EINTR) Fail(STR_FILE_OPEN_ERR);
    }
}

/// Not every file system has locks; a device that cannot be locked is still a device.
void Lock(int file, ImageFile::Access access) {
    const int operation = access == ImageFile::Access::Writing ? LOCK_EX : LOCK_SH;
    while (flock(file, operation) != 0 && errno == EINTR) {
    }
}

/// The size of a file or block device.
std::uint64_t SizeOf(int file) {
    struct stat status {};
    if (fstat(file, &status) != 0) Fail(STR_FILE_OPEN_ERR);
    if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode))
        throw Refusal(STR_FILE_OPEN_ERR, "it is neither a file nor a block device");
    const off_t size = lseek(file, 0, SEEK_END);
    if (size < 0) Fail(STR_FILE_OPEN_ERR);
    return static_cast<std::uint64_t>(size);
}

}  // namespace

ImageFile::ImageFile(const std::string& path, Access access) : mDescriptor(OpenFile(path, access)) {
    try {
        Lock(mDescriptor, access);
        mSize = SizeOf(mDescriptor);
    } catch (...) {
        close(mDescriptor);
        throw;
    }
}

ImageFile::~ImageFile() { close(mDescriptor); }

std::string ImageFile::Read(std::uint64_t offset, std::uint64_t size) const {
    std::string bytes(size, '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t came =
            pread(mDescriptor, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
        if (came < 0 && errno == EINTR) continue;
        if (came < 0) Fail(STR_FILE_READ_ERR);
        if (came == 0) throw Refusal(STR_FILE_READ_ERR, "the file ends too early");
        done += static_cast<std::size_t>(came);
    }
    return bytes;
}

void ImageFile::Write(std::uint64_t offset, std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = pwrite(mDescriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Fail(STR_FILE_WRITE_ERR);
        if (written == 0) throw Refusal(STR_FILE_WRITE_ERR, "the device takes no more bytes");
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

void ImageFile::Sync() const {
    while (fsync(mDescriptor) != 0) {
        // A node that the kernel gives for a chip has nothing to sync, and says so.
        if (errno == EINVAL || errno == ENOTSUP) return;
        if (errno != EINTR) Fail(STR_FILE_WRITE_ERR);
    }
}

}  // namespace VemoKesConfigTools
