#include "plugins/binary/Bytes.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"

#include <algorithm>
#include <limits>
#include <zlib.h>

namespace VemoKesConfigTools {

namespace {

constexpr std::uint8_t MORE = 0x80;
constexpr unsigned BITS = 7;

[[noreturn]] void Corrupt(const std::string& cause) { throw Refusal(STR_PACKINT_ERROR, cause); }

}  // namespace

std::uint32_t Crc32(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

void ByteWriter::Number(std::uint64_t value) {
    for (; value >= MORE; value >>= BITS) mBytes += static_cast<char>(value | MORE);
    mBytes += static_cast<char>(value);
}

std::uint64_t ByteReader::Number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += BITS) {
        if (mAt == mBytes.size()) Corrupt("a number ends behind the data");
        const auto byte = static_cast<std::uint8_t>(mBytes[mAt++]);
        // The tenth byte has room for one bit only, and the last byte of a longer number is never 0.
        if ((shift == 63 && byte > 1) || (shift != 0 && byte == 0)) Corrupt("a number is malformed");
        value |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
        if ((byte & MORE) == 0) return value;
    }
}

std::uint64_t ByteReader::NumberUpTo(std::uint64_t most, const char* what) {
    const std::uint64_t value = Number();
    if (value > most) {
        Corrupt(std::string(what) + " is " + std::to_string(value) + ", at most " + std::to_string(most) +
                " is possible");
    }
    return value;
}

std::size_t ByteReader::Count(std::size_t leastSize) {
    const std::uint64_t count = Number();
    if (count > Left() / leastSize) Corrupt("a length of " + std::to_string(count) + " ends behind the data");
    return static_cast<std::size_t>(count);
}

std::int32_t ByteReader::Signed32(const char* what) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t value = Signed();
    if (value < Limits::min() || value > Limits::max())
        Corrupt(std::string(what) + " is " + std::to_string(value) + ", which has more than 32 bits");
    return static_cast<std::int32_t>(value);
}

std::string_view ByteReader::Raw(std::size_t size) {
    if (size > Left()) Corrupt("the data end too early");
    const std::string_view bytes = mBytes.substr(mAt, size);
    mAt += size;
    return bytes;
}

void ByteReader::ExpectEnd() const {
    if (Left() != 0) Corrupt(std::to_string(Left()) + " bytes stand behind the end of the data");
}

}  // namespace VemoKesConfigTools
