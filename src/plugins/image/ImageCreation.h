#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class Refusal;

/// The kinds of devices that images stand for, each with its own plug-in and its own memories.
enum class ImageFamily : std::uint8_t { Eeprom = 1, Isp = 2, Kld = 3 };

/// "eeprom", "isp" or "kld".
std::string_view NameOf(ImageFamily family);

/// A memory of a device.
struct MemorySize {
    std::int32_t device = -1;  ///< a value of `IStoreManager::DEVICE`
    std::uint32_t size = 0;    ///< in bytes
};

/// What an image is made with, and keeps for ever.
struct ImageGeometry {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;  ///< 0 for any chip
    std::string systemLabel;   ///< what the first save finds; empty for any system
    std::uint32_t size = 0;    ///< of the whole image, in bytes
    std::uint32_t i2cMask = 0;
    /// All memories of the family with their sizes; without any the image is split in fixed parts.
    std::vector<MemorySize> memories;
};

/// Makes an image without content, at a path where nothing is or in a blank file of its size; with `force`
/// whatever is there is replaced. A connection is a path, or "file:" and a path. Throws `Refusal`, and has
/// then changed nothing, but for a device that failed while it was written.
void CreateImage(const std::string& connection, const ImageGeometry& geometry, bool force);

/// A refusal as the text of an error: `TEXT: CONNECTION: CAUSE`.
std::string TextOf(const Refusal& refusal, const std::string& connection);

}  // namespace VemoKesConfigTools
