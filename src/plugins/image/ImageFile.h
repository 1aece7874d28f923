#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// A file of fixed size that is written in place, as a memory chip is. Readers share it, a writer has it
/// alone: the other ones wait. Every failure throws `Refusal`.
class ImageFile {
public:
    enum class Access { Reading, Writing };

    ImageFile(const std::string& path, Access access);
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;
    ~ImageFile();

    std::uint64_t Size() const { return mSize; }
    /// The bytes of a stretch that lies in the file.
    std::string Read(std::uint64_t offset, std::uint64_t size) const;
    void Write(std::uint64_t offset, std::string_view bytes) const;
    /// Returns once all that was written lies on the device.
    void Sync() const;

private:
    int mDescriptor = -1;
    std::uint64_t mSize = 0;
};

}  // namespace VemoKesConfigTools
