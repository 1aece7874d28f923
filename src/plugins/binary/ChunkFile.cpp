#include "plugins/binary/ChunkFile.h"

#include "model/Words.h"
#include "plugins/binary/DeviceWords.h"
#include "plugins/binary/Refusal.h"

#include <cstdint>
#include <utility>

namespace VemoKesConfigTools {

namespace {

/// Tells a file that was sent as text, and one that was cut in its first line.
constexpr std::string_view MAGIC = "\x89KCF\r\n\x1A\n";
constexpr std::uint16_t VERSION = 1;
constexpr std::size_t CHECK_SIZE = sizeof(std::uint32_t);
constexpr std::size_t HEAD_SIZE = MAGIC.size() + sizeof VERSION + sizeof(std::uint32_t);

[[noreturn]] void Refuse(const std::string& cause) { throw Refusal(STR_PACKINT_ERROR, cause); }

}  // namespace

std::string EncodeChunk(const Chunk& chunk) {
    std::string body;
    ByteWriter(body).Text(chunk.system);
    AppendPlace(body, chunk.place);

    std::string bytes(MAGIC);
    ByteWriter writer(bytes);
    writer.Fixed(VERSION);
    writer.Fixed(static_cast<std::uint32_t>(HEAD_SIZE + body.size() + CHECK_SIZE));
    writer.Raw(body);
    writer.Fixed(Crc32(bytes));
    return bytes;
}

Chunk DecodeChunk(std::string_view bytes) {
    if (!IsChunk(bytes)) Refuse("is no chunk file");
    ByteReader head(bytes.substr(MAGIC.size()));
    if (const auto version = head.Fixed<std::uint16_t>(); version != VERSION)
        Refuse("has the format version " + std::to_string(version) + "; only 1 is known");
    if (const auto size = head.Fixed<std::uint32_t>(); size != bytes.size()) {
        Refuse("has " + std::to_string(bytes.size()) + " bytes and says that they are " +
               std::to_string(size));
    }
    if (bytes.size() < HEAD_SIZE + CHECK_SIZE) Refuse("the data end too early");
    const std::string_view checked = bytes.substr(0, bytes.size() - CHECK_SIZE);
    if (ByteReader(bytes.substr(checked.size())).Fixed<std::uint32_t>() != Crc32(checked))
        Refuse("the checksum is wrong");

    ByteReader body(checked.substr(HEAD_SIZE));
    Chunk chunk;
    chunk.system = body.Text();
    chunk.place = ReadPlace(body);
    body.ExpectEnd();
    return chunk;
}

bool IsChunk(std::string_view bytes) { return bytes.starts_with(MAGIC); }

std::optional<std::string> SystemOfChunk(std::string_view bytes) {
    if (!IsChunk(bytes) || bytes.size() < HEAD_SIZE) return std::nullopt;
    try {
        return std::string(ByteReader(bytes.substr(HEAD_SIZE)).Text());
    } catch (const Refusal&) {
        return std::nullopt;
    }
}

std::string ChunkFileName(const BinaryPlace& place) {
    constexpr std::size_t DIGITS = 4;
    std::string store = std::to_string(place.store);
    if (store.size() < DIGITS) store.insert(0, DIGITS - store.size(), '0');
    std::string name = SubsystemWord(place.subsystem) + "-" + DeviceWord(place.device) + "-" + store;
    if (place.layer) name += "-layer" + std::to_string(*place.layer);
    return name + std::string(CHUNK_EXTENSION);
}

}  // namespace VemoKesConfigTools
