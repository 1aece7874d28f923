#include "tool/config/ConfigAccess.h"

#include <algorithm>
#include <string_view>

namespace kes::tool {

namespace api = VEMO::Kes::ConfigurationTools;

bool LoadDevice(api::FrameworkFacade& facade, const ConfigSource& source) {
    switch (source.kind) {
        case ConfigKind::TEXT:
        case ConfigKind::CHUNKS:
            break;
        case ConfigKind::EEPROM:
            return facade.LoadFromDeviceKesEeprom(source.target, /*merge=*/false);
        case ConfigKind::ISP:
            return facade.LoadFromDeviceKesCrs(source.target, source.storeSet);
        case ConfigKind::KLD:
            return facade.LoadFromDeviceOstrel(source.target, /*merge=*/false);
    }
    return false;
}

bool SaveConfig(api::FrameworkFacade& facade, const ConfigSource& target, const SaveOptions& options) {
    constexpr std::int32_t AS_THE_DEVICE_IS = -1;
    switch (target.kind) {
        case ConfigKind::TEXT:
            break;
        case ConfigKind::CHUNKS:
            return facade.SaveBinary(target.target);
        case ConfigKind::EEPROM:
            return facade.SaveToDeviceKesEeprom(target.target, AS_THE_DEVICE_IS, AS_THE_DEVICE_IS);
        case ConfigKind::ISP:
            return facade.SaveToDeviceKesCrs(target.target, options.reset);
        case ConfigKind::KLD:
            return facade.SaveToDeviceOstrel(target.target, options.merge);
    }
    return false;
}

ExitCode ExitOf(const std::vector<Listener::Error>& errors) {
    constexpr std::int16_t MISSING_PLUGIN = 1;
    constexpr std::string_view SYSTEM[] = {"unable to open the file", "error reading the file",
                                           "unable to write to the file"};
    const bool failed = std::ranges::any_of(errors, [&](const Listener::Error& error) {
        return error.first == MISSING_PLUGIN || std::ranges::any_of(SYSTEM, [&](std::string_view start) {
                   return error.second.starts_with(start);
               });
    });
    return failed ? EXIT_SYSTEM : EXIT_FINDINGS;
}

}  // namespace kes::tool
