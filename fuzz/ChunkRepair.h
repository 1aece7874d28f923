#pragma once

#include "plugins/binary/Bytes.h"
#include "plugins/binary/ChunkFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace KesFuzz {

using namespace VemoKesConfigTools;

inline constexpr std::string_view CHUNK_MAGIC = "\x89KCF\r\n\x1A\n";

/// The bytes, or what lies inside of them when they are a chunk file, as the inside of a good one.
inline std::string RepairedChunk(std::string_view bytes) {
    constexpr std::size_t HEAD = 14;
    constexpr std::size_t CHECKSUM = 4;
    if (IsChunk(bytes) && bytes.size() >= HEAD + CHECKSUM)
        bytes = bytes.substr(HEAD, bytes.size() - HEAD - CHECKSUM);
    std::string file(CHUNK_MAGIC);
    ByteWriter writer(file);
    writer.Fixed(std::uint16_t{1});
    writer.Fixed(static_cast<std::uint32_t>(HEAD + bytes.size() + CHECKSUM));
    writer.Raw(bytes);
    writer.Fixed(Crc32(file));
    return file;
}

}  // namespace KesFuzz
