#pragma once

#include "support/TempFolder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace KesFuzz {

/// A file that is made once and gets its bytes anew for each input, since opening costs more than writing.
class ScratchFile {
public:
    ScratchFile()
        : mPath(mFolder / "input"), mDescriptor(open(mPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (mDescriptor < 0) throw std::runtime_error(mPath + ": " + std::strerror(errno));
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { close(mDescriptor); }

    const std::string& Path() const { return mPath; }
    void Write(std::string_view bytes) const {
        const ssize_t written = pwrite(mDescriptor, bytes.data(), bytes.size(), 0);
        if (written != static_cast<ssize_t>(bytes.size()) ||
            ftruncate(mDescriptor, static_cast<off_t>(bytes.size())) != 0)
            throw std::runtime_error(mPath + ": " + std::strerror(errno));
    }

private:
    KesTest::TempFolder mFolder;
    std::string mPath;
    int mDescriptor;
};

}  // namespace KesFuzz
