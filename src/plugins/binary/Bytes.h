#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// CRC-32 of ISO-HDLC (polynomial 0x04C11DB7, as in zip and PNG).
std::uint32_t Crc32(std::string_view bytes);

/// Appends numbers and texts to a byte string.
class ByteWriter {
public:
    explicit ByteWriter(std::string& bytes) : mBytes(bytes) {}

    /// Low byte first.
    template <std::unsigned_integral T>
    void Fixed(T value) {
        for (std::size_t i = 0; i < sizeof(T); ++i)
            mBytes += static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i) & 0xFFU);
    }
    /// Unsigned LEB128: seven bits a byte, the low ones first, the high bit set in all but the last byte.
    void Number(std::uint64_t value);
    /// Signed numbers as 0, -1, 1, -2, 2, ... (zigzag), then as `Number`.
    void Signed(std::int64_t value) {
        Number(static_cast<std::uint64_t>(value) << 1U ^ static_cast<std::uint64_t>(value >> 63));
    }
    /// The length, then the bytes.
    void Text(std::string_view text) {
        Number(text.size());
        mBytes += text;
    }
    void Raw(std::string_view bytes) { mBytes += bytes; }

private:
    std::string& mBytes;
};

/// Reads what `ByteWriter` has written. Every read that the bytes have no room for throws `Refusal` with
/// `STR_PACKINT_ERROR`; nothing is ever taken from a length before it has been held against what is left.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : mBytes(bytes) {}

    template <std::unsigned_integral T>
    T Fixed() {
        const std::string_view bytes = Raw(sizeof(T));
        std::uint64_t value = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) value = value << 8U | static_cast<unsigned char>(bytes[i]);
        return static_cast<T>(value);
    }
    /// The shortest form only, so that equal values are equal bytes.
    std::uint64_t Number();
    /// A number that must not be above `most`.
    std::uint64_t NumberUpTo(std::uint64_t most, const char* what);
    /// How many things follow that take at least `leastSize` bytes each.
    std::size_t Count(std::size_t leastSize);
    std::int64_t Signed() {
        const std::uint64_t value = Number();
        return static_cast<std::int64_t>(value >> 1U ^ (~(value & 1U) + 1U));
    }
    std::int32_t Signed32(const char* what);
    std::string_view Text() { return Raw(Count(1)); }
    /// A view of the next bytes, which lives as long as the bytes do.
    std::string_view Raw(std::size_t size);

    std::size_t Left() const { return mBytes.size() - mAt; }
    std::size_t Offset() const { return mAt; }
    /// Throws unless all bytes have been read.
    void ExpectEnd() const;

private:
    std::string_view mBytes;
    std::size_t mAt = 0;
};

}  // namespace VemoKesConfigTools
