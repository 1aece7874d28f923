#pragma once

#include "plugins/binary/Places.h"

#include <optional>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// What one chunk file holds: a place of one system.
struct Chunk {
    std::string system;  ///< system version label
    EncodedPlace place;
};

/// The extension of chunk files, with its point.
inline constexpr std::string_view CHUNK_EXTENSION = ".kcf";

/// The whole content of a chunk file.
std::string EncodeChunk(const Chunk& chunk);
/// Takes a chunk file apart after all of it has been checked. Throws `Refusal`.
Chunk DecodeChunk(std::string_view bytes);

/// Whether bytes are the beginning of a chunk file, whatever follows.
bool IsChunk(std::string_view bytes);
/// The system version label of a chunk file, of which the first 4 KiB are enough. None for another file, or
/// where they end too early; nothing else is checked.
std::optional<std::string> SystemOfChunk(std::string_view bytes);

/// The name of the chunk file of a place: "bt-eeprom-0003.kcf".
std::string ChunkFileName(const BinaryPlace& place);

}  // namespace VemoKesConfigTools
