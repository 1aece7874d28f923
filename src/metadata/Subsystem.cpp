#include "metadata/Subsystem.h"

#include "messages/CTheMsgHnd.h"
#include "metadata/RecordTrace.h"
#include "model/SubsystemNames.h"

#include <string>
#include <string_view>

namespace VEMO::Kes::ConfigurationTools {

namespace {

using namespace VemoKesConfigTools;

static_assert(SUBSYSTEM_NAMES.size() == SUBSYSTEM_TYPE_MAX, "one name for each type");

SubsystemTypes TypeOf(const HostString& name) {
    std::string lower = name.ToNarrow();
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    for (std::size_t type = 0; type < SUBSYSTEM_NAMES.size(); ++type) {
        if (SUBSYSTEM_NAMES[type] == lower) return static_cast<SubsystemTypes>(type);
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
    constexpr const char* FUNCTION = "VEMO::Kes::ConfigurationTools::Subsystem::Subsystem";
    TraceRecord(FUNCTION);
    if (mType == SUBSYSTEM_TYPE_NONE && !mName.IsNullOrEmpty() && CTheMsgHnd::DebugActivated()) {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, FUNCTION, false)
            .DebugOutputInHandler(1, false, false, FUNCTION, __FILE__, __LINE__, "Unknown subsystem");
    }
}

HostString Subsystem::NameOf(SubsystemTypes type) {
    const auto number = static_cast<std::size_t>(type);
    return HostString(number < SUBSYSTEM_NAMES.size() ? SUBSYSTEM_NAMES[number] : std::string_view());
}

}  // namespace VEMO::Kes::ConfigurationTools
