#pragma once

#include "files/Disk.h"
#include "files/FileError.h"
#include "files/FileLock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace VemoKesConfigTools::files {

/// A file of fixed size that is written in place, like a memory chip. Readers share it, a writer has
/// exclusive access. Every failure throws `FileError`.
class KES_API InPlaceFile {
public:
    /// Opens a regular file or block device and locks it.
    InPlaceFile(const std::string& path, LockMode access);
    InPlaceFile(const InPlaceFile&) = delete;
    InPlaceFile& operator=(const InPlaceFile&) = delete;
    ~InPlaceFile();

    /// In bytes.
    std::uint64_t Size() const;
    /// The bytes of a range that lies within the file.
    std::string Read(std::uint64_t offset, std::uint64_t size) const;
    void Write(std::uint64_t offset, std::string_view bytes);
    /// Flushes everything written since the last call to the device, then reads it back and compares.
    void Sync();

private:
    struct State;
    std::unique_ptr<State> mpState;
};

}  // namespace VemoKesConfigTools::files
