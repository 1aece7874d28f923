#include "model/PlaceWords.h"

#include "model/CKesContext.h"
#include "model/DeviceNames.h"
#include "model/SubsystemNames.h"

#include <algorithm>
#include <cstdint>

namespace VemoKesConfigTools {

std::string DescribePlace(const CKesContext& place) {
    const std::int32_t type = place.SubsystemType();
    const bool isNamed = type >= 0 && static_cast<std::size_t>(type) < SUBSYSTEM_NAMES.size();
    const auto* const device = std::ranges::find(DEVICE_NAMES, place.Device(), [](const auto& entry) {
        return static_cast<std::int32_t>(entry.second);
    });
    std::string text = isNamed ? std::string(SUBSYSTEM_NAMES[static_cast<std::size_t>(type)])
                               : "subsystem type " + std::to_string(type);
    text += ", " + (device == DEVICE_NAMES.end() ? "device " + std::to_string(place.Device())
                                                 : std::string(device->first));
    return text + ", store " + std::to_string(place.Store());
}

}  // namespace VemoKesConfigTools
