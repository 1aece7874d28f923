#pragma once

#include "plugins/image/DeviceImage.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// Which part of the device's content a save keeps.
enum class SaveKeeps { Nothing, OtherStores, OtherKeys };

struct SaveRequest {
    SaveKeeps keeps = SaveKeeps::Nothing;
    bool reset = false;       ///< request a reset of the device
    std::string systemLabel;  ///< of the places
};

/// Saves all places or none: all checks are made before the first byte is written. Stores whose content would
/// not change are not written. Throws `Refusal`.
void SavePlaces(DeviceImage& image, const std::vector<EncodedPlace>& places, const SaveRequest& request);

}  // namespace VemoKesConfigTools
