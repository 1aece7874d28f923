#pragma once

#include "plugins/image/ImageCreation.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

// The fixed parts of a device image, as described in docs/device-image.md. Decoding checks everything: all
// offsets and sizes in a decoded header or directory are within the image and do not overlap.

inline constexpr std::string_view IMAGE_MAGIC = "\x89KDI\r\n\x1A\n";
/// Header, memory table, checksum and selector.
inline constexpr std::uint32_t HEAD_SIZE = 176;
inline constexpr std::uint32_t SELECTOR_OFFSET = 164;
/// Memories, stores and segments start at multiples of this.
inline constexpr std::uint32_t ALIGNMENT = 16;
/// Magic number, sequence number and length before a content, and the checksum after it.
inline constexpr std::uint32_t BANK_OVERHEAD = 16;
inline constexpr std::uint32_t LEAST_BANK_SIZE = 32;
inline constexpr std::uint32_t MOST_IMAGE_SIZE = 1U << 26U;
inline constexpr std::uint32_t MOST_DIRECTORY_BANK_SIZE = 1U << 16U;
/// Bytes of one store in the directory.
inline constexpr std::uint32_t STORE_RECORD_SIZE = 32;
/// The value of bytes in rewritable memory that were never written.
inline constexpr char ERASED = '\xFF';

/// Rounds up to a multiple of the alignment.
constexpr std::uint64_t Align(std::uint64_t offset) {
    return (offset + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

/// A memory of the device, as stored in the header.
struct ImageMemory {
    std::uint16_t device = 0;
    bool oneTimeProgrammable = false;
    std::uint32_t offset = 0;  ///< in the image
    std::uint32_t size = 0;
};

/// The part of an image that is written once, when it is created.
struct ImageHeader {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;
    std::uint32_t size = 0;
    std::uint32_t i2cMask = 0;
    std::uint32_t directoryOffset = 0;
    std::uint32_t directoryBankSize = 0;
    std::vector<ImageMemory> memories;

    /// The memory of a device; null if there is none.
    const ImageMemory* MemoryOf(std::int32_t device) const;
};

/// A store, as described in the directory.
struct StoreRecord {
    std::uint16_t device = 0;
    std::uint16_t id = 0;
    std::uint16_t applicationId = 0;
    bool paired = false;
    bool takesEveryId = false;
    bool takesOtherPlaces = false;
    bool automatic = false;
    std::uint32_t offset = 0;    ///< of its area, in the image
    std::uint32_t bankSize = 0;  ///< in one-time-programmable memory the size of the whole area
    std::uint32_t current = 0;   ///< current bank, or offset of the current segment in the area
    std::uint32_t sequence = 0;  ///< of the current content, 0 if there is none yet
    std::uint32_t length = 0;    ///< of the current content
    std::uint32_t crc = 0;       ///< of the current content

    /// The size of its area.
    std::uint64_t AreaSize(bool oneTimeProgrammable) const {
        if (oneTimeProgrammable) return bankSize;
        return std::uint64_t{bankSize} * (paired ? 4 : 2);
    }
    /// The offset of a bank in the image.
    std::uint32_t BankOffset(std::uint32_t half, std::uint32_t bank) const {
        return offset + (half * 2 + bank) * bankSize;
    }
};

/// The part of an image that every save rewrites.
struct ImageDirectory {
    std::uint32_t sequence = 1;
    std::uint32_t resets = 0;
    std::string systemLabel;
    std::vector<StoreRecord> stores;
};

/// The header with memory table and checksum.
std::string EncodeHeader(const ImageHeader& header);
/// Decodes the first bytes of a file of this size. Throws `Refusal`.
ImageHeader DecodeHeader(std::string_view bytes, std::uint64_t fileSize);

/// The used bytes of a directory bank.
std::string EncodeDirectory(const ImageDirectory& directory);
/// Decodes a directory bank. Throws `Refusal`.
ImageDirectory DecodeDirectory(std::string_view bank, const ImageHeader& header);

/// The byte that selects this directory bank as the current one.
char SelectorOf(std::uint32_t bank);
/// The directory bank that the byte selects. Throws `Refusal`.
std::uint32_t BankOfSelector(char selector);

/// The used bytes of a store bank.
std::string EncodeBank(std::uint32_t sequence, std::string_view content);

/// What was found at the position of a bank.
struct FoundBank {
    bool isBlank = false;  ///< nothing was ever written there
    bool isWhole = false;
    std::uint32_t sequence = 0;
    std::string_view content;
};
/// Examines a bank, whose bytes may continue after its content.
FoundBank LookAtBank(std::string_view bytes);

/// The successor of a sequence number; 0, which stands for none, is skipped.
constexpr std::uint32_t NextSequence(std::uint32_t sequence) {
    return sequence == UINT32_MAX ? 1 : sequence + 1;
}

/// The name of a memory in messages, such as "otp" or "dev_cfg".
std::string NameOfMemory(ImageFamily family, std::int32_t device);
/// The name of a store in messages, such as "store smem 1" or "store eeprom".
std::string NameOfStore(ImageFamily family, const StoreRecord& store);
/// Throws `Refusal` if a content is larger than the room for it.
void CheckFits(ImageFamily family, const StoreRecord& store, std::uint64_t room, std::uint64_t needed);

}  // namespace VemoKesConfigTools
