#pragma once

#include "model/Words.h"

#include <array>
#include <string_view>

namespace VemoKesConfigTools {

/// The names of the subsystem types, each at the place of its number.
inline constexpr std::array<std::string_view, 11> SUBSYSTEM_NAMES = {
    STR_SUBSYSTEM_CURATOR, STR_SUBSYSTEM_BT,     STR_SUBSYSTEM_WLAN,    STR_SUBSYSTEM_AUDIO,
    STR_SUBSYSTEM_GNSS,    STR_SUBSYSTEM_NFC,    STR_SUBSYSTEM_JANITOR, STR_SUBSYSTEM_APP,
    STR_SUBSYSTEM_BLE,     STR_SUBSYSTEM_PSAPPS, STR_SUBSYSTEM_PSAUDIO,
};

}  // namespace VemoKesConfigTools
