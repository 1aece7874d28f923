// Loading and querying default values.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReader.h"
#include "model/IMetadataProvider.h"

#include <algorithm>
#include <optional>
#include <string>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

bool FrameworkFacade::LoadDefaults(const SubsystemRef& subsystem) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadDefaults");
    auto* reader = dynamic_cast<IConfigReader*>(mpProvider.get());
    if (reader == nullptr) return Fail(FUNCTION, ERROR_PLUGIN, NO_PROVIDER);
    if (!mOwningChip) return Fail(FUNCTION, ERROR_DATA, NO_CHIP);
    if (!subsystem) return false;
    // The metadata provider is also the reader of the defaults in its database.
    reader->SetObserver(mpDefaultChip.get());
    CKesContext context = QuestionContext(*subsystem, LayerIndexVals::Defaults);
    context.SetDevice(0);
    context.SetStore(0);
    context.SetOrder(0);
    return reader->Read(context);
}

bool FrameworkFacade::ReloadKnownDefaults(const HostListRef<SubsystemRef>& subsystems) {
    if (mpDefaultChip) mpDefaultChip->Clear();
    // `LoadDefaults` comes first in the expression, so that it is called even after a failure.
    bool all = true;
    for (const SubsystemRef& subsystem : subsystems) all = LoadDefaults(subsystem) && all;
    return all;
}

bool FrameworkFacade::HasDeviceDefaults() const {
    if (!mpDefaultChip) return false;
    // Defaults from the database are in the layer of defaults, those from a device are not.
    return std::ranges::any_of(mpDefaultChip->Subsystems(), [](const auto& entry) {
        CSubsystemConfig* place = entry.second;
        return place != nullptr && !place->Elements().empty() &&
               !place->Context().TagMatches(STR_LAYER_NUMBER, LayerIndexVals::Defaults);
    });
}

bool FrameworkFacade::HasAnyDefault(const SubsystemRef& subsystem, std::int32_t psId) const {
    if (!mpDefaultChip || !subsystem) return false;
    return std::ranges::any_of(mpDefaultChip->Subsystems(), [&](const auto& entry) {
        CSubsystemConfig* place = entry.second;
        return place != nullptr && !place->Elements().empty() &&
               place->Context().TagMatches(STR_SUBSYSTEM_TYPE, subsystem->Type()) &&
               !place->ElementsIsEmpty(static_cast<std::uint32_t>(psId));
    });
}

bool FrameworkFacade::HasDefault(const SubsystemRef& subsystem, std::int32_t psId) const {
    return mpDefaultChip && subsystem &&
           mpDefaultChip->HasElements(static_cast<std::uint32_t>(psId),
                                      static_cast<SubSystemTypeEnum>(subsystem->Type()),
                                      LayerIndexVals::Defaults);
}

bool FrameworkFacade::HasDefault(const SubsystemRef& subsystem, std::int32_t psId,
                                 const IndexListRef& indexes) const {
    if (!mpDefaultChip || !subsystem) return false;
    CKesContext context = QuestionContext(*subsystem, LayerIndexVals::Defaults);
    return mpDefaultChip->Element(indexedPsid(psId, indexes), context).IsValid();
}

HostString FrameworkFacade::GetDefault(const SubsystemRef& subsystem, std::int32_t psId,
                                       const IndexListRef& indexes) {
    if (!CanWrite(KES_FACADE_FUNCTION("GetDefault")) || !subsystem) return nullptr;
    CKesContext context = QuestionContext(*subsystem, LayerIndexVals::Defaults);
    context.SetTag(STR_LAYER_FILTER, LayerIndexVals::Maximum);
    const std::optional<std::string> text =
        TextOf(mpDefaultChip->Element(indexedPsid(psId, indexes), context), context);
    return text ? HostString(*text) : HostString();
}

}  // namespace VEMO::Kes::ConfigurationTools
