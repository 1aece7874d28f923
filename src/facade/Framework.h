#pragma once

#include "host/HostString.h"
#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VEMO::Kes::ConfigurationTools {

/// Starts and stops the library and reports why an operation failed. Typical use:
///
///     Framework::Init(pluginFolder);
///     {
///         FrameworkFacade facade(database);
///         facade.OwningChip(chip);          // from NetMetadataProvider::GetChips
///         if (!facade.LoadText(path, false)) { HostString why; Framework::GetLastError(why); }
///     }
///     Framework::Deinit();
///
/// Has static operations only. Use the library from one thread at a time.
class KES_API Framework {
public:
    Framework(const Framework&) = delete;
    Framework& operator=(const Framework&) = delete;

    /// Registers the plug-ins of a folder. Call it before creating a facade or provider. A folder without
    /// plug-ins is not an error here: the operations that need a missing plug-in report it. From then on, the
    /// lines of a message are separated by carriage returns.
    static void Init(const HostString& pluginDir);
    /// Releases the metadata plug-ins. Call it after the last facade and provider have been destroyed.
    static void Deinit();
    /// Whether an error is stored.
    static bool Error();
    /// Returns the number and, in `ErrorMsg`, the text of the last error; 0 and an empty text if there is
    /// none. The error stays stored. Number 0 means invalid data or an invalid argument, number 1 a missing
    /// plug-in or capability.
    static std::int32_t GetLastError(HostString& ErrorMsg);

    /// The UTF-8 form of a host string; empty for null. For use within the library only.
    static std::string GetString(const HostString& value);

private:
    Framework() = default;
};

}  // namespace VEMO::Kes::ConfigurationTools
