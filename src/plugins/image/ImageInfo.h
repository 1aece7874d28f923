#pragma once

#include "plugins/image/ImageCreation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The state of a bank: it has the current content or the previous one, was never written, or has no valid
/// content.
enum class BankState { Current, Previous, Empty, Damaged };

/// A bank of a store, or a segment of one in one-time-programmable memory.
struct BankInfo {
    std::uint32_t half = 0;      ///< of a paired store, 0 or 1
    std::uint32_t sequence = 0;  ///< 0 if it is empty or damaged
    BankState state = BankState::Empty;
};

/// A store; sizes are in bytes.
struct StoreDetails {
    std::int32_t device = -1;  ///< a value of `IStoreManager::DEVICE`
    std::uint16_t id = 0;
    std::uint16_t applicationId = 0;
    std::uint32_t bankSize = 0;
    std::uint32_t free = 0;
    std::uint32_t placeCount = 0;   ///< places in the current content; 0 if that is damaged
    bool paired = false;            ///< has a second copy of every bank
    bool automatic = false;         ///< created by a save
    bool takesEveryId = false;      ///< holds all stores of its device
    bool takesOtherPlaces = false;  ///< holds all places that no other store holds
    std::vector<BankInfo> banks;
};

/// A memory; sizes are in bytes.
struct MemoryDetails {
    std::int32_t device = -1;
    std::uint32_t size = 0;
    std::uint32_t free = 0;  ///< not used by any store
    bool oneTimeProgrammable = false;
};

/// A description of an image, without its keys.
struct ImageInfo {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;  ///< 0 for any chip
    std::string systemLabel;   ///< of the content; empty for any
    std::uint32_t size = 0;    ///< in bytes
    std::uint32_t i2cMask = 0;
    std::uint32_t resets = 0;  ///< how often a save requested a reset
    std::vector<MemoryDetails> memories;
    std::vector<StoreDetails> stores;
};

/// Describes an image. A damaged bank is shown by its state; a damaged header or directory throws `Refusal`.
ImageInfo ReadImageInfo(const std::string& connection);

/// The system label of an image; empty if the file is not a valid image or the image has no label.
std::optional<std::string> SystemOfImage(const std::string& connection);

}  // namespace VemoKesConfigTools
