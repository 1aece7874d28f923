#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class Refusal;

/// The device families that images represent, each with its own plug-in and memories.
enum class ImageFamily : std::uint8_t { Eeprom = 1, Isp = 2, Kld = 3 };

/// "eeprom", "isp" or "kld".
std::string_view NameOf(ImageFamily family);

/// A memory of a device.
struct MemorySize {
    std::int32_t device = -1;  ///< a value of `IStoreManager::DEVICE`
    std::uint32_t size = 0;    ///< in bytes
};

/// The parameters of an image that are fixed when it is created.
struct ImageGeometry {
    ImageFamily family = ImageFamily::Eeprom;
    std::uint16_t chipId = 0;  ///< 0 for any chip
    std::string systemLabel;   ///< initial label, which a save changes; empty for any system
    std::uint32_t size = 0;    ///< of the whole image, in bytes
    std::uint32_t i2cMask = 0;
    /// All memories of the family with their sizes; if empty, the image is divided in fixed proportions.
    std::vector<MemorySize> memories;
};

/// Creates an image without content, as a new file or in a blank file of its size; with `force` an existing
/// file is replaced. A connection is a path, or "file:" and a path. Throws `Refusal`; nothing has been
/// changed then, except on a device that failed while it was written.
void CreateImage(const std::string& connection, const ImageGeometry& geometry, bool force);

/// The error text of a refusal: `TEXT: CONNECTION: CAUSE`.
std::string TextOf(const Refusal& refusal, const std::string& connection);

}  // namespace VemoKesConfigTools
