#pragma once

#include "plugins/image/ImageCreation.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

// The fixed parts of a device image, byte for byte as docs/device-image.md tells them. What is decoded here
// has been checked: all that it says of places and sizes lies in the image and apart from each other.

inline constexpr std::string_view IMAGE_MAGIC = "\x89KDI\r\n\x1A\n";
/// Header, memory table, checksum and selector.
inline constexpr std::uint32_t HEAD_SIZE = 176;
inline constexpr std::uint32_t SELECTOR_OFFSET = 164;
/// What has to begin at a multiple of it: memories, stores and segments.
inline constexpr std::uint32_t ALIGNMENT = 16;
/// Magic, sequence and length in front of a content, and the checksum behind it.
inline constexpr std::uint32_t BANK_OVERHEAD = 16;
inline constexpr std::uint32_t LEAST_BANK_SIZE = 32;
inline constexpr std::uint32_t MOST_IMAGE_SIZE = 1U << 26U;
inline constexpr std::uint32_t MOST_DIRECTORY_BANK_SIZE = 1U << 16U;
/// One store in the directory.
inline constexpr std::uint32_t STORE_RECORD_SIZE = 32;
/// The state of rewritable memory that was never written.
inline constexpr char ERASED = '\xFF';

/// The next multiple of the alignment.
constexpr std::uint64_t Align(std::uint64_t offset) {
    return (offset + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

/// A memory of the device as the header has it.
struct ImageMemory {
    std::uint16_t device = 0;
    bool oneTimeProgrammable = false;
    std::uint32_t offset = 0;  ///< in the image
    std::uint32_t size = 0;
};

/// What is written once, when the image is made.
struct ImageHeader {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;
    std::uint32_t size = 0;
    std::uint32_t i2cMask = 0;
    std::uint32_t directoryOffset = 0;
    std::uint32_t directoryBankSize = 0;
    std::vector<ImageMemory> memories;

    /// The memory of a device, null when there is none.
    const ImageMemory* MemoryOf(std::int32_t device) const;
};

/// A store as the directory has it.
struct StoreRecord {
    std::uint16_t device = 0;
    std::uint16_t id = 0;
    std::uint16_t applicationId = 0;
    bool paired = false;
    bool takesEveryId = false;
    bool takesOtherPlaces = false;
    bool automatic = false;
    std::uint32_t offset = 0;    ///< of its area, in the image
    std::uint32_t bankSize = 0;  ///< of one-time-programmable memory the whole area
    std::uint32_t current = 0;   ///< a bank, or the offset of a segment in the area
    std::uint32_t sequence = 0;  ///< of the current content, 0 when there was none yet
    std::uint32_t length = 0;    ///< of the current content
    std::uint32_t crc = 0;       ///< of the current content

    /// The size of its area.
    std::uint64_t AreaSize(bool oneTimeProgrammable) const {
        if (oneTimeProgrammable) return bankSize;
        return std::uint64_t{bankSize} * (paired ? 4 : 2);
    }
    /// Where a bank begins in the image.
    std::uint32_t BankOffset(std::uint32_t half, std::uint32_t bank) const {
        return offset + (half * 2 + bank) * bankSize;
    }
};

/// What changes with every save.
struct ImageDirectory {
    std::uint32_t sequence = 1;
    std::uint32_t resets = 0;
    std::string systemLabel;
    std::vector<StoreRecord> stores;
};

/// The header with memory table and checksum.
std::string EncodeHeader(const ImageHeader& header);
/// The first bytes of a file of this size as a header. Throws `Refusal`.
ImageHeader DecodeHeader(std::string_view bytes, std::uint64_t fileSize);

/// The used bytes of a directory bank.
std::string EncodeDirectory(const ImageDirectory& directory);
/// A directory bank. Throws `Refusal`.
ImageDirectory DecodeDirectory(std::string_view bank, const ImageHeader& header);

/// The byte that tells which directory bank counts.
char SelectorOf(std::uint32_t bank);
/// The directory bank that counts. Throws `Refusal`.
std::uint32_t BankOfSelector(char selector);

/// The used bytes of a store bank.
std::string EncodeBank(std::uint32_t sequence, std::string_view content);

/// What is found where a bank should be.
struct FoundBank {
    bool isBlank = false;  ///< nothing was ever written there
    bool isWhole = false;
    std::uint32_t sequence = 0;
    std::string_view content;
};
/// Looks at a bank, in what is left of its bytes.
FoundBank LookAtBank(std::string_view bytes);

/// The number behind a sequence number; 0 is none.
constexpr std::uint32_t NextSequence(std::uint32_t sequence) {
    return sequence == UINT32_MAX ? 1 : sequence + 1;
}

/// "otp", "dev_cfg": the word for a memory in messages.
std::string NameOfMemory(ImageFamily family, std::int32_t device);
/// "store smem 1", "store eeprom": the words for a store in messages.
std::string NameOfStore(ImageFamily family, const StoreRecord& store);
/// Refuses a content that is larger than the room for it.
void CheckFits(ImageFamily family, const StoreRecord& store, std::uint64_t room, std::uint64_t needed);

}  // namespace VemoKesConfigTools
