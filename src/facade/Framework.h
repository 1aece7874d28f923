#pragma once

#include "host/HostString.h"
#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VEMO::Kes::ConfigurationTools {

/// Starts and stops the library, and tells why an operation failed. Start here:
///
///     Framework::Init(pluginFolder);
///     {
///         FrameworkFacade facade(database);
///         facade.OwningChip(chip);          // from NetMetadataProvider::GetChips
///         if (!facade.LoadText(path, false)) { HostString why; Framework::GetLastError(why); }
///     }
///     Framework::Deinit();
///
/// Static operations only. The library is used from one thread at a time.
class KES_API Framework {
public:
    Framework(const Framework&) = delete;
    Framework& operator=(const Framework&) = delete;

    /// Makes the plug-ins of a folder known; to be called before a facade or provider is built. A folder
    /// without plug-ins is no failure: what is missing shows when it is asked for. From then on the lines of
    /// a message are separated by a carriage return.
    static void Init(const HostString& pluginDir);
    /// Releases the metadata plug-ins; to be called after the last facade and provider are gone.
    static void Deinit();
    /// Whether an error is stored.
    static bool Error();
    /// The number and, in `ErrorMsg`, the text of the last error; 0 and the empty text without one. The error
    /// stays stored. Number 0 speaks of data or an argument, number 1 of a missing plug-in or capability.
    static std::int32_t GetLastError(HostString& ErrorMsg);

    /// The narrow form of a host string; empty for null. Inside the library only.
    static std::string GetString(const HostString& value);

private:
    Framework() = default;
};

}  // namespace VEMO::Kes::ConfigurationTools
