#pragma once

#include "metadata/Enumerations.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace kes::tool {

/// The devices that a text can name, with their words.
inline constexpr std::array<std::pair<std::string_view, std::int32_t>, 7> DEVICE_NAMES = {{
    {"rom", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_ROM},
    {"otp", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_OTP},
    {"smem", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_SMEM},
    {"mtp", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_MTP},
    {"cur_cfg", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_CUR_CFG},
    {"fw_cfg", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_FW_CFG},
    {"eeprom", VEMO::Kes::ConfigurationTools::DEVICE_TYPE_EEPROM},
}};

/// The word of a device, or its number where it has none.
inline std::string DeviceName(std::int32_t device) {
    for (const auto& [name, number] : DEVICE_NAMES) {
        if (number == device) return std::string(name);
    }
    return std::to_string(device);
}

}  // namespace kes::tool
