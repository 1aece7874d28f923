#pragma once

#include "plugins/image/ImageCreation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// What a bank of a store is good for: it counts, it holds what counted before, nothing was ever written to
/// it, or it holds no whole content.
enum class BankState { Current, Previous, Empty, Damaged };

/// A bank of a store, or of one-time-programmable memory a segment.
struct BankInfo {
    std::uint32_t half = 0;      ///< of a paired store, 0 or 1
    std::uint32_t sequence = 0;  ///< 0 when it is empty or damaged
    BankState state = BankState::Empty;
};

/// A store, its sizes in bytes.
struct StoreDetails {
    std::int32_t device = -1;  ///< a value of `IStoreManager::DEVICE`
    std::uint16_t id = 0;
    std::uint16_t applicationId = 0;
    std::uint32_t bankSize = 0;
    std::uint32_t free = 0;
    std::uint32_t placeCount = 0;   ///< places in the current content, 0 when that is damaged
    bool paired = false;            ///< every bank is there twice
    bool automatic = false;         ///< made by a save
    bool takesEveryId = false;      ///< of its device
    bool takesOtherPlaces = false;  ///< that no other store takes
    std::vector<BankInfo> banks;
};

/// A memory, its sizes in bytes.
struct MemoryDetails {
    std::int32_t device = -1;
    std::uint32_t size = 0;
    std::uint32_t free = 0;  ///< what no store has
    bool oneTimeProgrammable = false;
};

/// What an image is, without the keys in it.
struct ImageInfo {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;  ///< 0 for any chip
    std::string systemLabel;   ///< of the content, empty for any
    std::uint32_t size = 0;    ///< in bytes
    std::uint32_t i2cMask = 0;
    std::uint32_t resets = 0;  ///< how often a save asked for a reset
    std::vector<MemoryDetails> memories;
    std::vector<StoreDetails> stores;
};

/// Looks into an image. A damaged bank is told by its state; a damaged header or directory throws `Refusal`.
ImageInfo ReadImageInfo(const std::string& connection);

/// The system label of an image. Empty for a file that is no whole image, or an image without a label.
std::optional<std::string> SystemOfImage(const std::string& connection);

}  // namespace VemoKesConfigTools
