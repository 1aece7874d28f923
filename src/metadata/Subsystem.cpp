#include "metadata/Subsystem.h"

#include "messages/CTheMsgHnd.h"
#include "model/Words.h"

#include <array>
#include <string>
#include <string_view>

namespace VEMO::Kes::ConfigurationTools {

namespace {

using namespace VemoKesConfigTools;

/// The names in the order of their types.
constexpr std::array<std::string_view, SUBSYSTEM_TYPE_MAX> NAMES = {
    STR_SUBSYSTEM_CURATOR, STR_SUBSYSTEM_BT,     STR_SUBSYSTEM_WLAN,    STR_SUBSYSTEM_AUDIO,
    STR_SUBSYSTEM_GNSS,    STR_SUBSYSTEM_NFC,    STR_SUBSYSTEM_JANITOR, STR_SUBSYSTEM_APP,
    STR_SUBSYSTEM_BLE,     STR_SUBSYSTEM_PSAPPS, STR_SUBSYSTEM_PSAUDIO,
};

SubsystemTypes TypeOf(const HostString& name) {
    std::string lower = name.ToNarrow();
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (std::size_t type = 0; type < NAMES.size(); ++type) {
        if (NAMES[type] == lower) return static_cast<SubsystemTypes>(type);
    }
    return SUBSYSTEM_TYPE_NONE;
}

}  // namespace

Subsystem::Subsystem() : Subsystem("", "", "", "", "", "", "") {}

Subsystem::Subsystem(HostString name, HostString version, HostString alias, HostString layer,
                     HostString variant, HostString description, HostString buildDate)
    : mName(std::move(name)),
      mVersion(std::move(version)),
      mAlias(std::move(alias)),
      mLayer(std::move(layer)),
      mVariant(std::move(variant)),
      mDescription(std::move(description)),
      mBuildDate(std::move(buildDate)),
      mType(TypeOf(mName)) {
    if (mType == SUBSYSTEM_TYPE_NONE && !mName.IsNullOrEmpty() && CTheMsgHnd::DebugActivated()) {
        constexpr const char* FUNCTION = "VEMO::Kes::ConfigurationTools::Subsystem::Subsystem";
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, FUNCTION, false)
            .DebugOutputInHandler(1, false, false, FUNCTION, __FILE__, __LINE__, "Unknown subsystem");
    }
}

HostString Subsystem::NameOf(SubsystemTypes type) {
    const auto number = static_cast<std::size_t>(type);
    return HostString(number < NAMES.size() ? NAMES[number] : std::string_view());
}

}  // namespace VEMO::Kes::ConfigurationTools
