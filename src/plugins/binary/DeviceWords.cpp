#include "plugins/binary/DeviceWords.h"

#include "model/DeviceNames.h"
#include "model/SubsystemNames.h"

namespace VemoKesConfigTools {

std::string SubsystemWord(std::int32_t type) {
    const auto number = static_cast<std::size_t>(type);
    if (type >= 0 && number < SUBSYSTEM_NAMES.size()) return std::string(SUBSYSTEM_NAMES[number]);
    return "subsystem" + std::to_string(type);
}

std::string DeviceWord(std::int32_t device) {
    for (const auto& [name, number] : DEVICE_NAMES) {
        if (number == device) return std::string(name);
    }
    return "device" + std::to_string(device);
}

}  // namespace VemoKesConfigTools
