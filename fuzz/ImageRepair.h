#pragma once

#include "plugins/binary/Bytes.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/ImageFormat.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KesFuzz {

using namespace VemoKesConfigTools;

/// The family that an image names, or any.
inline ImageFamily FamilyOf(const std::string& bytes) {
    constexpr std::size_t FAMILY = 10;
    constexpr unsigned FAMILIES = 3;
    const unsigned number = bytes.size() <= FAMILY ? 0 : static_cast<unsigned char>(bytes[FAMILY]) - 1U;
    return static_cast<ImageFamily>(number % FAMILIES + 1);
}

inline std::uint32_t Get(const std::string& bytes, std::size_t at) {
    return ByteReader(std::string_view(bytes).substr(at)).Fixed<std::uint32_t>();
}

inline void Put(std::string& bytes, std::size_t at, std::uint32_t value) {
    std::string field;
    ByteWriter(field).Fixed(value);
    bytes.replace(at, field.size(), field);
}

/// Sets the checksum that stands behind `size` bytes.
inline void Seal(std::string& bytes, std::size_t at, std::size_t size) {
    Put(bytes, at + size, Crc32(std::string_view(bytes).substr(at, size)));
}

inline constexpr std::size_t HEAD_OF_BANK = 12;

/// Makes a bank of the bytes that lie where the current content of a store should be.
inline void RepairStore(std::string& bytes, const StoreRecord& store, bool oneTime, std::size_t record) {
    constexpr std::size_t CHECKSUM_IN_RECORD = 28;
    for (const std::uint32_t half : {1U, 0U}) {
        if (half == 1 && !store.paired) continue;
        const std::size_t bank =
            oneTime ? store.offset + store.current : store.BankOffset(half, store.current);
        bytes.replace(bank, 4, "KBNK");
        Put(bytes, bank + 4, store.sequence);
        Put(bytes, bank + 8, store.length);
        Seal(bytes, bank, HEAD_OF_BANK + store.length);
        Put(bytes, record + CHECKSUM_IN_RECORD,
            Crc32(std::string_view(bytes).substr(bank + HEAD_OF_BANK, store.length)));
    }
}

/// The bytes with all magic numbers, sizes and checksums put right as far as the rest makes sense.
inline std::string RepairedImage(std::string bytes) {
    constexpr std::size_t VERSION = 8;
    constexpr std::size_t SIZE = 16;
    constexpr std::size_t HEAD_CHECKED = 160;
    bytes.resize(std::max<std::size_t>(bytes.size(), HEAD_SIZE));
    bytes.replace(0, IMAGE_MAGIC.size(), IMAGE_MAGIC);
    bytes.replace(VERSION, 2, std::string("\1\0", 2));
    Put(bytes, SIZE, static_cast<std::uint32_t>(bytes.size()));
    const char selector = bytes[SELECTOR_OFFSET];
    if (selector != SelectorOf(0) && selector != SelectorOf(1)) bytes[SELECTOR_OFFSET] = SelectorOf(0);
    Seal(bytes, 0, HEAD_CHECKED);
    try {
        const ImageHeader header = DecodeHeader(bytes, bytes.size());
        const std::size_t start = header.directoryOffset + std::size_t{header.directoryBankSize} *
                                                               BankOfSelector(bytes[SELECTOR_OFFSET]);
        if (header.directoryBankSize < HEAD_OF_BANK) return bytes;
        bytes.replace(start, 4, "KDIR");
        const std::size_t used = std::size_t{8} + Get(bytes, start + 4);
        if (used + 4 > header.directoryBankSize) return bytes;
        Seal(bytes, start, used);
        const std::string bank = bytes.substr(start, header.directoryBankSize);
        const std::vector<StoreRecord> stores = DecodeDirectory(bank, header).stores;
        std::size_t record = start + used - stores.size() * STORE_RECORD_SIZE;
        for (const StoreRecord& store : stores) {
            if (store.sequence != 0)
                RepairStore(bytes, store, header.MemoryOf(store.device)->oneTimeProgrammable, record);
            record += STORE_RECORD_SIZE;
        }
        Seal(bytes, start, used);
    } catch (const Refusal&) {
        // What makes no sense is as good an input as it is.
    }
    return bytes;
}

}  // namespace KesFuzz
