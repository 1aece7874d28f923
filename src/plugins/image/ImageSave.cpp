#include "plugins/image/ImageSave.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/ImageStores.h"
#include "plugins/image/PlaceMerge.h"

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace VemoKesConfigTools {

namespace {

/// The places of a save, by the stores that will hold them.
struct SortedPlaces {
    std::vector<std::vector<EncodedPlace>> byStore;
    /// Places without a store, by device and number of the store that must be created for them.
    std::map<std::pair<std::uint16_t, std::uint16_t>, std::vector<EncodedPlace>> homeless;
};

std::pair<std::uint16_t, std::uint16_t> NewStoreFor(const ImageHeader& header, const BinaryPlace& place) {
    constexpr std::int32_t MOST_ID = std::numeric_limits<std::uint16_t>::max();
    if (header.family != ImageFamily::Kld || header.MemoryOf(place.device) == nullptr)
        throw Refusal(STR_OPERATION_INVALID, Describe(place) + ": the device has no store for it");
    if (place.store < 0 || place.store > MOST_ID) {
        throw Refusal(STR_OPERATION_INVALID,
                      Describe(place) + ": store numbers range from 0 to " + std::to_string(MOST_ID));
    }
    return {static_cast<std::uint16_t>(place.device), static_cast<std::uint16_t>(place.store)};
}

SortedPlaces Sort(const DeviceImage& image, const std::vector<EncodedPlace>& places) {
    SortedPlaces sorted;
    sorted.byStore.resize(image.Directory().stores.size());
    for (const EncodedPlace& place : places) {
        const auto store = StoreFor(image.Header(), image.Directory().stores, place.place);
        if (store) {
            sorted.byStore[*store].push_back(place);
        } else if (place.keyCount != 0) {
            sorted.homeless[NewStoreFor(image.Header(), place.place)].push_back(place);
        }
    }
    return sorted;
}

/// The current content; empty if it is damaged but will be replaced completely anyway.
std::optional<std::string> HeldContent(const DeviceImage& image, std::size_t store, bool isReplaced) {
    try {
        return image.Content(store);
    } catch (const Refusal& refusal) {
        if (!isReplaced || refusal.Text() != STR_PACKINT_ERROR) throw;
        return std::nullopt;
    }
}

/// The new content of a store; empty if the store is not to be written.
std::optional<std::string> NewContent(const DeviceImage& image, std::size_t store,
                                      const std::vector<EncodedPlace>& given, SaveKeeps keeps) {
    if (given.empty() && keeps != SaveKeeps::Nothing) {
        // Writing the same content again restores the damaged half of a pair.
        if (!image.NeedsRepair(store)) return std::nullopt;
        return image.Content(store);
    }
    const StoreRecord& record = image.Directory().stores[store];
    const bool isOneTime = image.Header().MemoryOf(record.device)->oneTimeProgrammable;
    const bool isMerged = keeps == SaveKeeps::OtherKeys;
    // The old content is needed to merge, and to check which bits one-time-programmable memory has set.
    const std::optional<std::string> held = HeldContent(image, store, !isOneTime && !isMerged);
    if (!held) return EncodeContent(given);

    const std::vector<EncodedPlace> heldPlaces =
        isOneTime || isMerged ? DecodeContent(*held) : std::vector<EncodedPlace>();
    const std::vector<EncodedPlace> wanted = isMerged ? MergePlaces(heldPlaces, given) : given;
    if (isOneTime) CheckOnlySetsBits(heldPlaces, wanted, NameOfStore(image.Header().family, record));
    std::string content = EncodeContent(wanted);
    if (content == *held && !image.NeedsRepair(store)) return std::nullopt;
    return content;
}

}  // namespace

void SavePlaces(DeviceImage& image, const std::vector<EncodedPlace>& places, const SaveRequest& request) {
    const SortedPlaces sorted = Sort(image, places);
    DeviceImage::Change change{image.Directory(), {}};
    for (std::size_t store = 0; store < sorted.byStore.size(); ++store) {
        auto content = NewContent(image, store, sorted.byStore[store], request.keeps);
        if (content) change.contents.emplace(store, std::move(*content));
    }
    std::vector<NeededStore> needed;
    for (const auto& [store, itsPlaces] : sorted.homeless)
        needed.push_back({store.first, store.second, EncodeContent(itsPlaces)});
    AddStores(image, needed, change.directory);
    for (NeededStore& need : needed) {
        const auto store =
            StoreFor(image.Header(), change.directory.stores, {-1, need.device, need.id, {}, 0});
        change.contents.emplace(store.value(), std::move(need.content));
    }
    if (request.reset) ++change.directory.resets;
    if (!request.systemLabel.empty()) change.directory.systemLabel = request.systemLabel;
    // If nothing changes, the image is not written at all, which spares the device a write cycle.
    const bool isSame = change.contents.empty() && !request.reset &&
                        change.directory.systemLabel == image.Directory().systemLabel;
    if (!isSame) image.Commit(std::move(change));
}

}  // namespace VemoKesConfigTools
