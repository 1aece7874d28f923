#include "plugins/image/ImageFormat.h"

#include "model/IStoreManager.h"
#include "model/Words.h"
#include "plugins/binary/Bytes.h"
#include "plugins/binary/DeviceWords.h"
#include "plugins/binary/Refusal.h"

#include <algorithm>
#include <set>

namespace VemoKesConfigTools {

namespace {

constexpr std::uint16_t VERSION = 1;
constexpr std::uint32_t HEADER_SIZE = 64;
constexpr std::uint32_t MEMORY_RECORD_SIZE = 12;
constexpr std::uint32_t MOST_MEMORIES = 8;
constexpr std::uint32_t HEADER_CRC_OFFSET = HEADER_SIZE + MOST_MEMORIES * MEMORY_RECORD_SIZE;
constexpr std::uint32_t DIRECTORY_MAGIC = 0x5249444B;  // "KDIR"
constexpr std::uint32_t BANK_MAGIC = 0x4B4E424B;       // "KBNK"
constexpr std::uint32_t CRC_SIZE = 4;

constexpr std::uint16_t FLAG_ONE_TIME = 1;
constexpr std::uint16_t FLAG_PAIRED = 1;
constexpr std::uint16_t FLAG_EVERY_ID = 2;
constexpr std::uint16_t FLAG_OTHER_PLACES = 4;
constexpr std::uint16_t FLAG_AUTOMATIC = 8;

// They differ in all bits, so that flipped bits do not turn one into the other.
constexpr char SELECTORS[] = {'\xA5', '\x5A'};

static_assert(SELECTOR_OFFSET == HEADER_CRC_OFFSET + CRC_SIZE);

[[noreturn]] void Damaged(const std::string& cause) { throw Refusal(STR_PACKINT_ERROR, cause); }

/// A non-empty range of the image: start and end.
using Stretch = std::pair<std::uint64_t, std::uint64_t>;

Stretch StretchOf(std::uint64_t offset, std::uint64_t size) { return {offset, offset + size}; }

bool Overlap(std::vector<Stretch> stretches) {
    std::ranges::sort(stretches);
    return std::ranges::adjacent_find(stretches, [](const Stretch& left, const Stretch& right) {
               return left.second > right.first;
           }) != stretches.end();
}

void CheckHeader(const ImageHeader& header) {
    std::vector<Stretch> stretches{
        StretchOf(0, HEAD_SIZE),
        StretchOf(header.directoryOffset, std::uint64_t{header.directoryBankSize} * 2)};
    std::set<std::uint16_t> devices;
    for (const ImageMemory& memory : header.memories) {
        stretches.push_back(StretchOf(memory.offset, memory.size));
        if (memory.offset % ALIGNMENT != 0 || memory.size == 0 || !devices.insert(memory.device).second)
            Damaged("the memory table of its header is invalid");
    }
    const bool inside = std::ranges::all_of(stretches, [&](const Stretch& stretch) {
        return stretch.second <= header.size && stretch.first < stretch.second;
    });
    if (header.directoryBankSize > MOST_DIRECTORY_BANK_SIZE || !inside || Overlap(std::move(stretches)))
        Damaged("the memories of its header overlap or lie outside the image");
}

void CheckStore(const StoreRecord& store, const ImageHeader& header) {
    const auto fail = [&](const char* cause) { Damaged(NameOfStore(header.family, store) + ": " + cause); };
    const ImageMemory* memory = header.MemoryOf(store.device);
    if (memory == nullptr) {
        fail("the image has no such memory");
        return;
    }
    const std::uint64_t areaEnd = store.offset + store.AreaSize(memory->oneTimeProgrammable);
    if (store.bankSize < LEAST_BANK_SIZE || store.offset % ALIGNMENT != 0 || store.offset < memory->offset ||
        areaEnd > std::uint64_t{memory->offset} + memory->size)
        fail("it lies outside its memory");
    if (store.length > store.bankSize - BANK_OVERHEAD) fail("its content is larger than the store");
    if ((store.sequence == 0) != (store.length == 0)) fail("the length of its content is invalid");
    if (!memory->oneTimeProgrammable) {
        if (store.current > 1) fail("its current bank is invalid");
        return;
    }
    if (store.paired) fail("a one-time-programmable store cannot be paired");
    if (store.current % ALIGNMENT != 0 ||
        std::uint64_t{store.current} + BANK_OVERHEAD + store.length > store.bankSize)
        fail("its content lies outside the store");
}

void CheckStores(const std::vector<StoreRecord>& stores, const ImageHeader& header) {
    std::vector<Stretch> stretches;
    std::set<std::pair<std::uint16_t, std::uint16_t>> names;
    for (const StoreRecord& store : stores) {
        CheckStore(store, header);
        const bool oneTime = header.MemoryOf(store.device)->oneTimeProgrammable;
        stretches.push_back(StretchOf(store.offset, store.AreaSize(oneTime)));
        if (!names.emplace(store.device, store.id).second)
            Damaged(NameOfStore(header.family, store) + " is listed twice");
    }
    if (Overlap(std::move(stretches))) Damaged("stores overlap");
    if (std::ranges::count_if(stores, &StoreRecord::takesOtherPlaces) > 1)
        Damaged("two stores take all other places");
}

StoreRecord DecodeStore(ByteReader& bytes) {
    StoreRecord store;
    store.device = bytes.Fixed<std::uint16_t>();
    store.id = bytes.Fixed<std::uint16_t>();
    store.applicationId = bytes.Fixed<std::uint16_t>();
    const auto flags = bytes.Fixed<std::uint16_t>();
    if (flags > (FLAG_PAIRED | FLAG_EVERY_ID | FLAG_OTHER_PLACES | FLAG_AUTOMATIC))
        Damaged("a store has unknown flags");
    store.paired = flags & FLAG_PAIRED;
    store.takesEveryId = flags & FLAG_EVERY_ID;
    store.takesOtherPlaces = flags & FLAG_OTHER_PLACES;
    store.automatic = flags & FLAG_AUTOMATIC;
    for (std::uint32_t* field :
         {&store.offset, &store.bankSize, &store.current, &store.sequence, &store.length, &store.crc})
        *field = bytes.Fixed<std::uint32_t>();
    return store;
}

void EncodeStore(ByteWriter& bytes, const StoreRecord& store) {
    bytes.Fixed(store.device);
    bytes.Fixed(store.id);
    bytes.Fixed(store.applicationId);
    bytes.Fixed(static_cast<std::uint16_t>(
        (store.paired ? FLAG_PAIRED : 0) | (store.takesEveryId ? FLAG_EVERY_ID : 0) |
        (store.takesOtherPlaces ? FLAG_OTHER_PLACES : 0) | (store.automatic ? FLAG_AUTOMATIC : 0)));
    for (const std::uint32_t field :
         {store.offset, store.bankSize, store.current, store.sequence, store.length, store.crc})
        bytes.Fixed(field);
}

}  // namespace

const ImageMemory* ImageHeader::MemoryOf(std::int32_t device) const {
    const auto found = std::ranges::find(memories, device, &ImageMemory::device);
    return found == memories.end() ? nullptr : &*found;
}

std::string EncodeHeader(const ImageHeader& header) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Raw(IMAGE_MAGIC);
    writer.Fixed(VERSION);
    writer.Fixed(static_cast<std::uint8_t>(header.family));
    writer.Fixed(static_cast<std::uint8_t>(header.memories.size()));
    writer.Fixed(header.chipId);
    writer.Fixed(std::uint16_t{0});
    for (const std::uint32_t field :
         {header.size, header.i2cMask, header.directoryOffset, header.directoryBankSize})
        writer.Fixed(field);
    bytes.resize(HEADER_SIZE);
    for (const ImageMemory& memory : header.memories) {
        writer.Fixed(memory.device);
        writer.Fixed(static_cast<std::uint16_t>(memory.oneTimeProgrammable ? FLAG_ONE_TIME : 0));
        writer.Fixed(memory.offset);
        writer.Fixed(memory.size);
    }
    bytes.resize(HEADER_CRC_OFFSET);
    writer.Fixed(Crc32(bytes));
    return bytes;
}

ImageHeader DecodeHeader(std::string_view bytes, std::uint64_t fileSize) {
    if (!bytes.starts_with(IMAGE_MAGIC)) Damaged("it is not a device image");
    if (bytes.size() < HEAD_SIZE) Damaged("it ends within its header");
    ByteReader reader(bytes.substr(IMAGE_MAGIC.size()));
    if (const auto version = reader.Fixed<std::uint16_t>(); version != VERSION) {
        Damaged("it has format version " + std::to_string(version) + ", this library reads version " +
                std::to_string(VERSION));
    }
    // After the version: another version may have its checksum elsewhere.
    if (ByteReader(bytes.substr(HEADER_CRC_OFFSET)).Fixed<std::uint32_t>() !=
        Crc32(bytes.substr(0, HEADER_CRC_OFFSET)))
        Damaged("the checksum of its header is wrong");

    ImageHeader header;
    const auto family = reader.Fixed<std::uint8_t>();
    if (family < static_cast<std::uint8_t>(ImageFamily::Eeprom) ||
        family > static_cast<std::uint8_t>(ImageFamily::Kld))
        Damaged("its family " + std::to_string(family) + " is unknown");
    header.family = static_cast<ImageFamily>(family);
    const auto memories = reader.Fixed<std::uint8_t>();
    if (memories > MOST_MEMORIES) Damaged("its header has too many memories");
    header.chipId = reader.Fixed<std::uint16_t>();
    reader.Raw(sizeof(std::uint16_t));  // reserved
    for (std::uint32_t* field :
         {&header.size, &header.i2cMask, &header.directoryOffset, &header.directoryBankSize})
        *field = reader.Fixed<std::uint32_t>();
    if (header.size != fileSize || header.size > MOST_IMAGE_SIZE) {
        Damaged("it has " + std::to_string(fileSize) + " bytes, its header says " +
                std::to_string(header.size));
    }
    ByteReader table(bytes.substr(HEADER_SIZE));
    for (std::uint32_t i = 0; i < memories; ++i) {
        ImageMemory& memory = header.memories.emplace_back();
        memory.device = table.Fixed<std::uint16_t>();
        const auto flags = table.Fixed<std::uint16_t>();
        if (flags > FLAG_ONE_TIME) Damaged("a memory of its header has unknown flags");
        memory.oneTimeProgrammable = flags == FLAG_ONE_TIME;
        memory.offset = table.Fixed<std::uint32_t>();
        memory.size = table.Fixed<std::uint32_t>();
    }
    CheckHeader(header);
    return header;
}

std::string EncodeDirectory(const ImageDirectory& directory) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Fixed(directory.sequence);
    writer.Fixed(directory.resets);
    writer.Text(directory.systemLabel);
    writer.Fixed(static_cast<std::uint16_t>(directory.stores.size()));
    for (const StoreRecord& store : directory.stores) EncodeStore(writer, store);

    std::string bank;
    ByteWriter whole(bank);
    whole.Fixed(DIRECTORY_MAGIC);
    whole.Fixed(static_cast<std::uint32_t>(bytes.size()));
    whole.Raw(bytes);
    whole.Fixed(Crc32(bank));
    return bank;
}

ImageDirectory DecodeDirectory(std::string_view bank, const ImageHeader& header) {
    try {
        ByteReader reader(bank);
        if (reader.Fixed<std::uint32_t>() != DIRECTORY_MAGIC) Damaged("its magic number is wrong");
        const auto length = reader.Fixed<std::uint32_t>();
        ByteReader fields(reader.Raw(length));
        const std::size_t end = reader.Offset();
        // Nothing in the directory is interpreted before its checksum has been verified.
        if (reader.Fixed<std::uint32_t>() != Crc32(bank.substr(0, end))) Damaged("its checksum is wrong");

        ImageDirectory directory;
        directory.sequence = fields.Fixed<std::uint32_t>();
        directory.resets = fields.Fixed<std::uint32_t>();
        directory.systemLabel = fields.Text();
        const auto count = fields.Fixed<std::uint16_t>();
        if (fields.Left() != std::size_t{count} * STORE_RECORD_SIZE) Damaged("its number of stores is wrong");
        for (std::uint16_t i = 0; i < count; ++i) directory.stores.push_back(DecodeStore(fields));
        CheckStores(directory.stores, header);
        return directory;
    } catch (const Refusal& refusal) {
        Damaged(std::string("its directory is damaged: ") + refusal.what());
    }
}

char SelectorOf(std::uint32_t bank) { return SELECTORS[bank]; }

std::uint32_t BankOfSelector(char selector) {
    if (selector == SELECTORS[0]) return 0;
    if (selector == SELECTORS[1]) return 1;
    Damaged("the byte that selects its directory is damaged");
}

std::string EncodeBank(std::uint32_t sequence, std::string_view content) {
    std::string bank;
    ByteWriter writer(bank);
    writer.Fixed(BANK_MAGIC);
    writer.Fixed(sequence);
    writer.Fixed(static_cast<std::uint32_t>(content.size()));
    writer.Raw(content);
    writer.Fixed(Crc32(bank));
    return bank;
}

FoundBank LookAtBank(std::string_view bytes) {
    FoundBank found;
    if (bytes.size() < BANK_OVERHEAD) return found;
    const std::string_view start = bytes.substr(0, BANK_OVERHEAD);
    // Blank rewritable memory has all bits set, blank one-time-programmable memory none.
    found.isBlank = start == std::string(BANK_OVERHEAD, ERASED) || start == std::string(BANK_OVERHEAD, '\0');
    ByteReader reader(bytes);
    if (reader.Fixed<std::uint32_t>() != BANK_MAGIC) return found;
    const auto sequence = reader.Fixed<std::uint32_t>();
    const auto length = reader.Fixed<std::uint32_t>();
    if (length > bytes.size() - BANK_OVERHEAD) return found;
    const std::string_view content = reader.Raw(length);
    const std::size_t end = reader.Offset();
    if (reader.Fixed<std::uint32_t>() != Crc32(bytes.substr(0, end))) return found;
    found.isWhole = true;
    found.sequence = sequence;
    found.content = content;
    return found;
}

std::string NameOfMemory(ImageFamily family, std::int32_t device) {
    if (family == ImageFamily::Isp && device == IStoreManager::DEVICE_DEV_CFG)
        return std::string(STR_STORESET_DEV_CFG_FS);
    return DeviceWord(device);
}

std::string NameOfStore(ImageFamily family, const StoreRecord& store) {
    const std::string name = "store " + NameOfMemory(family, store.device);
    return store.takesEveryId || store.takesOtherPlaces ? name : name + " " + std::to_string(store.id);
}

void CheckFits(ImageFamily family, const StoreRecord& store, std::uint64_t room, std::uint64_t needed) {
    if (needed <= room) return;
    throw Refusal(STR_FILE_WRITE_ERR, NameOfStore(family, store) + " has room for " + std::to_string(room) +
                                          " bytes, " + std::to_string(needed) + " are needed");
}

}  // namespace VemoKesConfigTools
