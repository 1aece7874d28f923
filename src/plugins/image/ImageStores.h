#pragma once

#include "model/CStoreInfo.h"
#include "plugins/image/DeviceImage.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The position of the store for a place: its own, one for its whole device, or the one for all other places;
/// the latter does not hold places of memories that have their own stores. Empty if there is none.
std::optional<std::size_t> StoreFor(const ImageHeader& header, const std::vector<StoreRecord>& stores,
                                    const BinaryPlace& place);

/// The number of free bytes in a store.
std::uint32_t FreeIn(const DeviceImage& image, const StoreRecord& store);

/// The places of each store of the image. Throws `Refusal`.
std::vector<std::vector<EncodedPlace>> PlacesByStore(const DeviceImage& image);

/// The stores that a reader reports: each store for a single place, used or not, and one for each place
/// inside a store that holds many. `places` are the places of each store of the image.
std::vector<CStoreInfo> StoreInfosOf(const DeviceImage& image,
                                     const std::vector<std::vector<EncodedPlace>>& places);

/// Creates a store; its given size is that of one bank. Throws `Refusal`.
void MakeStore(DeviceImage& image, const CStoreInfo& wanted);

/// A store that a save must create, with its content.
struct NeededStore {
    std::uint16_t device = 0;
    std::uint16_t id = 0;
    std::string content;
};
/// Adds stores to the directory, with room to grow if the memory is large enough. Throws `Refusal`.
void AddStores(const DeviceImage& image, const std::vector<NeededStore>& needed, ImageDirectory& directory);

}  // namespace VemoKesConfigTools
