#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// The name of a subsystem type, "subsystem12" for one that has none.
std::string SubsystemWord(std::int32_t type);

/// The name of a device as texts have it, "device9" for one that has none.
std::string DeviceWord(std::int32_t device);

}  // namespace VemoKesConfigTools
