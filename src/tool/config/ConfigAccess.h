#pragma once

#include "facade/FrameworkFacade.h"
#include "tool/config/ConfigSource.h"
#include "tool/keys/Listener.h"
#include "tool/output/ExitCodes.h"

#include <vector>

namespace kes::tool {

// The operations of the library that go with each kind of configuration.

/// Loads what a device holds in place of what the facade holds.
bool LoadDevice(VEMO::Kes::ConfigurationTools::FrameworkFacade& facade, const ConfigSource& source);

/// How a device is written.
struct SaveOptions {
    bool merge = false;  ///< kld: keys of the device that the configuration does not have stay
    bool reset = false;  ///< isp: the device is reset afterwards
};

/// Writes what the facade holds to a folder or device.
bool SaveConfig(VEMO::Kes::ConfigurationTools::FrameworkFacade& facade, const ConfigSource& target,
                const SaveOptions& options);

/// What a command ends with that has heard these errors about binary files or a device: whether the data were
/// wrong, or the system failed.
ExitCode ExitOf(const std::vector<Listener::Error>& errors);

}  // namespace kes::tool
