#pragma once

#include "model/CStoreInfo.h"
#include "plugins/image/DeviceImage.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The position of the store that takes a place: one of its own, one for its device, or the one for all other
/// places, which does not take those of memories that have stores of their own.
std::optional<std::size_t> StoreFor(const ImageHeader& header, const std::vector<StoreRecord>& stores,
                                    const BinaryPlace& place);

/// The bytes that a store has left.
std::uint32_t FreeIn(const DeviceImage& image, const StoreRecord& store);

/// The places of each store of the image. Throws `Refusal`.
std::vector<std::vector<EncodedPlace>> PlacesByStore(const DeviceImage& image);

/// The stores that a reader has met: those of a place's own, used or not, and one for each place inside a
/// store that takes many. `places` are the places of each store of the image.
std::vector<CStoreInfo> StoreInfosOf(const DeviceImage& image,
                                     const std::vector<std::vector<EncodedPlace>>& places);

/// Makes a store, whose size is that of one bank. Throws `Refusal`.
void MakeStore(DeviceImage& image, const CStoreInfo& wanted);

/// A store that a save has to make, for a content.
struct NeededStore {
    std::uint16_t device = 0;
    std::uint16_t id = 0;
    std::string content;
};
/// Adds stores to the directory, with room to grow where the memory has it. Throws `Refusal`.
void AddStores(const DeviceImage& image, const std::vector<NeededStore>& needed, ImageDirectory& directory);

}  // namespace VemoKesConfigTools
