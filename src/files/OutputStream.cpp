#include "files/OutputStream.h"

#include "files/OpenFile.h"

#include <optional>
#include <streambuf>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

class OutputStream::Buffer : public std::streambuf {
public:
    explicit Buffer(const std::string& path) : mFile(path, OpenFor::TRUNCATING), mBytes(SIZE) {
        setp(mBytes.data(), mBytes.data() + mBytes.size());
    }

    void Close() {
        Flush();
        mFile.Close();
    }

protected:
    int_type overflow(int_type next) override {
        try {
            Flush();
        } catch (const FileError&) {
            return traits_type::eof();
        }
        if (traits_type::eq_int_type(next, traits_type::eof())) return traits_type::not_eof(next);
        return sputc(traits_type::to_char_type(next));
    }

    int sync() override {
        return traits_type::eq_int_type(overflow(traits_type::eof()), traits_type::eof()) ? -1 : 0;
    }

private:
    static constexpr std::size_t SIZE = 65536;

    void Flush() {
        const std::string_view bytes(pbase(), static_cast<std::size_t>(pptr() - pbase()));
        // The buffer is emptied even if the write fails: a later flush must not write part of it twice.
        setp(mBytes.data(), mBytes.data() + mBytes.size());
        mFile.WriteNext(bytes);
    }

    OpenFile mFile;
    std::vector<char> mBytes;
};

OutputStream::OutputStream(const std::string& path) : std::ostream(nullptr) {
    try {
        mpBuffer = std::make_unique<Buffer>(path);
        rdbuf(mpBuffer.get());
    } catch (const FileError&) {
        setstate(std::ios::badbit);
    }
}

OutputStream::~OutputStream() = default;

bool OutputStream::Close() {
    if (!mpBuffer) return false;
    try {
        mpBuffer->Close();
    } catch (const FileError&) {
        setstate(std::ios::badbit);
    }
    const bool written = good();
    rdbuf(nullptr);
    mpBuffer.reset();
    return written;
}

}  // namespace VemoKesConfigTools::files
