#include "plugins/image/ImageLayout.h"

#include "model/IStoreManager.h"
#include "model/Words.h"
#include "plugins/binary/Bytes.h"
#include "plugins/binary/Refusal.h"

#include <algorithm>

namespace VemoKesConfigTools {

namespace {

/// A memory of a family.
struct MemoryPlan {
    IStoreManager::DEVICE device;
    std::uint32_t fraction;  ///< 1/`fraction` of the image; 0 for the rest, as the last memory has
    bool oneTimeProgrammable = false;
    bool hasStore = false;  ///< initially, as large as the memory
    bool takesEveryId = false;
    bool takesOtherPlaces = false;
};

constexpr std::uint32_t LEAST_MEMORY_SIZE = 64;
/// The directory has room for a label of at least this length: a save may set a longer one than the initial.
constexpr std::size_t LABEL_ROOM = 40;

std::vector<MemoryPlan> PlanOf(ImageFamily family) {
    using Manager = IStoreManager;
    switch (family) {
        case ImageFamily::Eeprom:
            return {{Manager::DEVICE_EEPROM, 0, false, true, false, true}};
        case ImageFamily::Isp:
            return {{Manager::DEVICE_CUR_CFG, 4, false, true, true, false},
                    {Manager::DEVICE_FW_CFG, 4, false, true, true, false},
                    {Manager::DEVICE_DEV_CFG, 0, false, true, false, true}};
        case ImageFamily::Kld:
            return {{Manager::DEVICE_OTP, 16, true},
                    {Manager::DEVICE_SMEM, 4},
                    {Manager::DEVICE_MTP, 8},
                    {Manager::DEVICE_EEPROM, 0, false, true, false, true}};
    }
    return {};
}

/// How many stores the directory of an image has room for.
std::uint32_t MostStores(const ImageGeometry& geometry, std::size_t fixedStores) {
    constexpr std::uint32_t BYTES_PER_STORE = 1024;
    if (geometry.family != ImageFamily::Kld) return static_cast<std::uint32_t>(fixedStores);
    return std::clamp(geometry.size / BYTES_PER_STORE, 8U, 64U);
}

std::uint32_t DirectoryBankSize(const ImageGeometry& geometry, std::size_t fixedStores) {
    ImageDirectory directory;
    directory.systemLabel.resize(std::max(LABEL_ROOM, geometry.systemLabel.size()));
    const std::size_t stores = std::size_t{MostStores(geometry, fixedStores)} * STORE_RECORD_SIZE;
    return static_cast<std::uint32_t>(Align(EncodeDirectory(directory).size() + stores));
}

/// The size of a memory in a geometry that lists sizes.
std::uint64_t GivenSize(const ImageGeometry& geometry, const MemoryPlan& plan) {
    const auto found = std::ranges::find(geometry.memories, plan.device, &MemorySize::device);
    if (found == geometry.memories.end()) {
        throw Refusal(STR_OPERATION_INVALID,
                      "the size of the memory " + NameOfMemory(geometry.family, plan.device) + " is missing");
    }
    return found->size;
}

void CheckGeometry(const ImageGeometry& geometry, const std::vector<MemoryPlan>& plan) {
    if (geometry.size > MOST_IMAGE_SIZE) {
        throw Refusal(STR_OPERATION_INVALID, "an image has at most " + std::to_string(MOST_IMAGE_SIZE) +
                                                 " bytes, " + std::to_string(geometry.size) +
                                                 " are requested");
    }
    for (auto memory = geometry.memories.begin(); memory != geometry.memories.end(); ++memory) {
        const std::string name = "the memory " + NameOfMemory(geometry.family, memory->device);
        if (std::ranges::none_of(plan,
                                 [&](const MemoryPlan& known) { return known.device == memory->device; }))
            throw Refusal(STR_OPERATION_INVALID,
                          "the family " + std::string(NameOf(geometry.family)) + " does not have " + name);
        if (std::find_if(geometry.memories.begin(), memory,
                         [&](const MemorySize& other) { return other.device == memory->device; }) != memory)
            throw Refusal(STR_OPERATION_INVALID, name + " is given twice");
    }
}

StoreRecord FirstStore(const MemoryPlan& plan, const ImageMemory& memory) {
    StoreRecord store;
    store.device = memory.device;
    store.takesEveryId = plan.takesEveryId;
    store.takesOtherPlaces = plan.takesOtherPlaces;
    store.offset = memory.offset;
    store.bankSize = memory.size / 2 / ALIGNMENT * ALIGNMENT;  // the area has two banks
    return store;
}

}  // namespace

ImageLayout LayOut(const ImageGeometry& geometry) {
    const std::vector<MemoryPlan> plan = PlanOf(geometry.family);
    CheckGeometry(geometry, plan);
    ImageLayout layout;
    ImageHeader& header = layout.header;
    header.family = geometry.family;
    header.chipId = geometry.chipId;
    header.size = geometry.size;
    header.i2cMask = geometry.i2cMask;
    header.directoryOffset = HEAD_SIZE;
    header.directoryBankSize = DirectoryBankSize(geometry, plan.size());
    layout.directory.systemLabel = geometry.systemLabel;

    std::uint64_t offset = header.directoryOffset + std::uint64_t{header.directoryBankSize} * 2;
    for (const MemoryPlan& memoryPlan : plan) {
        const std::uint64_t left = geometry.size - std::min<std::uint64_t>(geometry.size, offset);
        std::uint64_t size = left;
        if (!geometry.memories.empty()) {
            size = GivenSize(geometry, memoryPlan);
        } else if (memoryPlan.fraction != 0) {
            size = std::uint64_t{geometry.size} / memoryPlan.fraction / ALIGNMENT * ALIGNMENT;
        }
        if (size < LEAST_MEMORY_SIZE || size > left) {
            throw Refusal(
                STR_OPERATION_INVALID,
                "an image of " + std::to_string(geometry.size) + " bytes has " + std::to_string(left) +
                    " bytes left for the memory " + NameOfMemory(geometry.family, memoryPlan.device) + ", " +
                    std::to_string(std::max<std::uint64_t>(size, LEAST_MEMORY_SIZE)) + " are needed");
        }
        header.memories.push_back({static_cast<std::uint16_t>(memoryPlan.device),
                                   memoryPlan.oneTimeProgrammable, static_cast<std::uint32_t>(offset),
                                   static_cast<std::uint32_t>(size)});
        if (memoryPlan.hasStore)
            layout.directory.stores.push_back(FirstStore(memoryPlan, header.memories.back()));
        offset = Align(offset + size);
    }
    return layout;
}

std::string RenderImage(ImageLayout layout, const std::vector<std::string>& contents) {
    const ImageHeader& header = layout.header;
    std::string bytes(header.size, ERASED);
    for (const ImageMemory& memory : header.memories) {
        if (memory.oneTimeProgrammable) bytes.replace(memory.offset, memory.size, memory.size, '\0');
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (contents[i].empty()) continue;
        StoreRecord& store = layout.directory.stores.at(i);
        CheckFits(header.family, store, store.bankSize - BANK_OVERHEAD, contents[i].size());
        store.sequence = 1;
        store.length = static_cast<std::uint32_t>(contents[i].size());
        store.crc = Crc32(contents[i]);
        const std::string bank = EncodeBank(store.sequence, contents[i]);
        bytes.replace(store.BankOffset(0, 0), bank.size(), bank);
    }
    const auto put = [&](std::size_t offset, const std::string& part) {
        bytes.replace(offset, part.size(), part);
    };
    put(0, std::string(HEAD_SIZE, '\0'));
    put(0, EncodeHeader(header));
    put(SELECTOR_OFFSET, std::string(1, SelectorOf(0)));
    put(header.directoryOffset, EncodeDirectory(layout.directory));
    return bytes;
}

}  // namespace VemoKesConfigTools
