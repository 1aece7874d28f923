#include "plugins/image/ImageStores.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"

#include <algorithm>
#include <set>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr std::uint64_t STEP = 64;

std::uint64_t RoundUp(std::uint64_t size) { return (size + STEP - 1) / STEP * STEP; }

/// The preferred and the minimum bank size for a content.
struct BankSizes {
    std::uint64_t wanted;
    std::uint64_t least;
};

BankSizes SizesFor(std::size_t contentSize, bool oneTime) {
    const std::uint64_t needed = contentSize + BANK_OVERHEAD;
    // In one-time-programmable memory every save adds a new segment.
    if (oneTime) return {RoundUp(std::max<std::uint64_t>(512, 4 * needed)), RoundUp(needed)};
    return {RoundUp(std::max<std::uint64_t>(256, 2 * needed)), RoundUp(needed)};
}

/// The offset of the next store in a memory.
std::uint32_t NextOffset(const DeviceImage& image, const ImageMemory& memory,
                         const std::vector<StoreRecord>& stores) {
    return memory.offset + memory.size - image.FreeOf(memory, stores);
}

[[noreturn]] void NoRoom(const DeviceImage& image, const StoreRecord& store, std::uint64_t left,
                         std::uint64_t needed) {
    throw Refusal(STR_FILE_WRITE_ERR, NameOfStore(image.Header().family, store) + " takes " +
                                          std::to_string(needed) + " bytes of its memory, " +
                                          std::to_string(left) + " are left");
}

/// Adds the stores of one memory.
void AddStoresOf(const DeviceImage& image, const ImageMemory& memory,
                 const std::vector<const NeededStore*>& needed, std::vector<StoreRecord>& stores) {
    const bool oneTime = memory.oneTimeProgrammable;
    const std::uint64_t banks = oneTime ? 1 : 2;
    std::uint64_t reserved = 0;
    for (const NeededStore* need : needed) reserved += SizesFor(need->content.size(), oneTime).least * banks;
    for (const NeededStore* need : needed) {
        StoreRecord store;
        store.device = memory.device;
        store.id = need->id;
        store.automatic = true;
        const std::uint64_t left = image.FreeOf(memory, stores);
        const BankSizes sizes = SizesFor(need->content.size(), oneTime);
        if (left < sizes.least * banks) NoRoom(image, store, left, sizes.least * banks);
        reserved -= sizes.least * banks;
        // Leave the minimum that the stores after this one need.
        const std::uint64_t most = left > reserved ? (left - reserved) / banks : 0;
        // If the preferred size does not fit: one-time-programmable memory takes all that is left, since
        // every save uses up some of it; other memory takes the minimum.
        const std::uint64_t fallback = oneTime ? most / ALIGNMENT * ALIGNMENT : sizes.least;
        const std::uint64_t size = sizes.wanted <= most ? sizes.wanted : std::max(sizes.least, fallback);
        store.offset = NextOffset(image, memory, stores);
        store.bankSize = static_cast<std::uint32_t>(size);
        stores.push_back(store);
    }
}

CStoreInfo InfoOf(const DeviceImage& image, const StoreRecord& store, std::uint16_t device, std::uint16_t id,
                  std::uint16_t order) {
    return {static_cast<IStoreManager::DEVICE>(device),
            id,
            store.bankSize,
            static_cast<std::int32_t>(FreeIn(image, store)),
            store.applicationId,
            order,
            store.paired};
}

}  // namespace

std::optional<std::size_t> StoreFor(const ImageHeader& header, const std::vector<StoreRecord>& stores,
                                    const BinaryPlace& place) {
    const auto takes = [&](const StoreRecord& store) {
        if (store.takesOtherPlaces) return false;
        return store.device == place.device && (store.takesEveryId || store.id == place.store);
    };
    // A store of its own or for its device takes precedence over that for all other places.
    auto found = std::ranges::find_if(stores, takes);
    if (found == stores.end()) {
        found = std::ranges::find_if(stores, &StoreRecord::takesOtherPlaces);
        const bool isElsewhere = found != stores.end() && found->device != place.device &&
                                 header.MemoryOf(place.device) != nullptr;
        if (found == stores.end() || isElsewhere) return std::nullopt;
    }
    return static_cast<std::size_t>(found - stores.begin());
}

std::uint32_t FreeIn(const DeviceImage& image, const StoreRecord& store) {
    if (image.Header().MemoryOf(store.device)->oneTimeProgrammable) return image.RoomFor(store);
    return image.RoomFor(store) - store.length;
}

std::vector<std::vector<EncodedPlace>> PlacesByStore(const DeviceImage& image) {
    std::vector<std::vector<EncodedPlace>> places;
    for (std::size_t i = 0; i < image.Directory().stores.size(); ++i)
        places.push_back(DecodeContent(image.Content(i)));
    return places;
}

std::vector<CStoreInfo> StoreInfosOf(const DeviceImage& image,
                                     const std::vector<std::vector<EncodedPlace>>& places) {
    std::vector<CStoreInfo> infos;
    const auto add = [&](const StoreRecord& store, std::uint16_t device, std::uint16_t id,
                         std::uint16_t order) {
        const auto counted = static_cast<std::uint16_t>(infos.size() + 1);
        infos.push_back(InfoOf(image, store, device, id, order == 0 ? counted : order));
    };
    for (std::size_t i = 0; i < image.Directory().stores.size(); ++i) {
        const StoreRecord& store = image.Directory().stores[i];
        if (!store.takesEveryId && !store.takesOtherPlaces) {
            add(store, store.device, store.id, places[i].empty() ? 0 : places[i].front().place.order);
            continue;
        }
        std::set<std::pair<std::uint16_t, std::uint16_t>> met;
        for (const EncodedPlace& encoded : places[i]) {
            const auto device = static_cast<std::uint16_t>(encoded.place.device);
            const auto id = static_cast<std::uint16_t>(encoded.place.store);
            if (met.emplace(device, id).second) add(store, device, id, encoded.place.order);
        }
    }
    return infos;
}

void MakeStore(DeviceImage& image, const CStoreInfo& wanted) {
    const ImageFamily family = image.Header().family;
    ImageDirectory directory = image.Directory();
    StoreRecord store;
    store.device = static_cast<std::uint16_t>(wanted.DeviceId());
    store.id = wanted.StoreId();
    store.applicationId = wanted.LinkedStoreId();
    store.paired = wanted.Paired();
    store.bankSize = wanted.StoreSize();
    const std::string name = NameOfStore(family, store);
    const ImageMemory* memory = image.Header().MemoryOf(wanted.DeviceId());
    const auto holdsDevice = [&](const StoreRecord& other) {
        return other.device == store.device && (other.takesEveryId || other.takesOtherPlaces);
    };
    if (memory == nullptr || std::ranges::any_of(directory.stores, holdsDevice))
        throw Refusal(STR_OPERATION_INVALID, name + ": stores cannot be created in this memory");
    if (std::ranges::any_of(directory.stores, [&](const StoreRecord& other) {
            return other.device == store.device && other.id == store.id;
        }))
        throw Refusal(STR_OPERATION_INVALID, name + " already exists");
    if (store.paired && memory->oneTimeProgrammable)
        throw Refusal(STR_OPERATION_INVALID, name + ": a one-time-programmable store cannot be paired");
    if (store.bankSize < LEAST_BANK_SIZE) {
        throw Refusal(STR_OPERATION_INVALID, name + ": a size of " + std::to_string(store.bankSize) +
                                                 " bytes is too small, at least " +
                                                 std::to_string(LEAST_BANK_SIZE) + " are needed");
    }
    const std::uint64_t left = image.FreeOf(*memory, directory.stores);
    const std::uint64_t needed = store.AreaSize(memory->oneTimeProgrammable);
    if (needed > left) NoRoom(image, store, left, needed);
    store.offset = NextOffset(image, *memory, directory.stores);
    directory.stores.push_back(store);
    image.Commit({std::move(directory), {}});
}

void AddStores(const DeviceImage& image, const std::vector<NeededStore>& needed, ImageDirectory& directory) {
    for (const ImageMemory& memory : image.Header().memories) {
        std::vector<const NeededStore*> here;
        for (const NeededStore& need : needed) {
            if (need.device == memory.device) here.push_back(&need);
        }
        AddStoresOf(image, memory, here, directory.stores);
    }
}

}  // namespace VemoKesConfigTools
