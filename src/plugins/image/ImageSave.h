#pragma once

#include "plugins/image/DeviceImage.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// What a save keeps of what the device holds.
enum class SaveKeeps { Nothing, OtherStores, OtherKeys };

struct SaveRequest {
    SaveKeeps keeps = SaveKeeps::Nothing;
    bool reset = false;       ///< asks the device for a reset
    std::string systemLabel;  ///< of the places
};

/// Saves places as a whole or not at all: every check comes before the first byte is written. Stores whose
/// content would stay the same are left alone. Throws `Refusal`.
void SavePlaces(DeviceImage& image, const std::vector<EncodedPlace>& places, const SaveRequest& request);

}  // namespace VemoKesConfigTools
