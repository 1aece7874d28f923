// Lists of the keys of a configuration, with values and defaults in the text format.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/CRawKeysWriter.h"
#include "model/CSubsystemConfig.h"
#include "model/IMetadata.h"
#include "model/IMetadataProvider.h"

#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

/// What follows "=" when the element is written on one line that can be read again.
std::string FrameworkFacade::LineValueOf(CElement& element, CKesContext& context) {
    constexpr std::string_view DELIMITER = " = ";
    EmptyBuffer();
    CRawKeysWriter writer(*mpBuffWriter, *mpProvider);
    element.Write(writer, context);
    const std::string text = mpBuffer->str();
    const std::size_t delimiter = text.find(DELIMITER);
    if (delimiter == std::string::npos) return {};
    const std::size_t from = delimiter + DELIMITER.size();
    return text.substr(from, text.find_last_not_of('\n') + 1 - from);
}

std::shared_ptr<KeyValue> FrameworkFacade::ValueOf(const CSubsystemConfig& place, CElement& element) {
    CKesContext context = place.Place();
    context.SetTag(STR_TXT_SIMPLE_MODE, STR_TRUE);
    // Defaults do not belong to a device and store, so these are left out of the query.
    CKesContext question;
    question.SetSubsystemType(context.SubsystemType());
    question.SetLayerNumber(LayerIndexVals::Defaults);
    question.SetTag(STR_LAYER_FILTER, LayerIndexVals::Maximum);
    const CElement& byDefault = mpDefaultChip->Element(element.KeyString(), question);
    const IMetadata& metadata = mpProvider->MetadataByPsid(element.PsId(), context, false);
    std::string value = LineValueOf(element, context);
    std::optional<std::string> defaultValue;
    if (byDefault.IsValid()) defaultValue = LineValueOf(const_cast<CElement&>(byDefault), context);
    const auto indices = element.Indices();
    return std::make_shared<KeyValue>(static_cast<SubsystemTypes>(context.SubsystemType()), context.Device(),
                                      context.Store(), static_cast<std::int32_t>(element.PsId()),
                                      metadata.IsValid() ? HostString(metadata.Name()) : HostString(),
                                      KeyValue::IndexList(indices.begin(), indices.end()), std::move(value),
                                      std::move(defaultValue));
}

HostListRef<std::shared_ptr<KeyValue>> FrameworkFacade::ValuesOf(const CChipConfig& chip) {
    auto list = std::make_shared<std::vector<std::shared_ptr<KeyValue>>>();
    for (const auto& [number, place] : chip.Subsystems()) {
        for (CElement* element : place->Elements()) list->push_back(ValueOf(*place, *element));
    }
    return list;
}

HostListRef<std::shared_ptr<KeyValue>> FrameworkFacade::GetValues() {
    if (!CanWrite(KES_FACADE_FUNCTION("GetValues"))) return nullptr;
    return ValuesOf(*mpFileChip);
}

HostListRef<std::shared_ptr<KeyValue>> FrameworkFacade::GetValues(const SubsystemRef& subsystem,
                                                                  std::int32_t psId,
                                                                  const IndexListRef& indexes) {
    if (!CanWrite(KES_FACADE_FUNCTION("GetValues"))) return nullptr;
    auto list = std::make_shared<std::vector<std::shared_ptr<KeyValue>>>();
    const std::vector<std::uint32_t> indices(indexes.begin(), indexes.end());
    for (const auto& [number, place] : mpFileChip->Subsystems()) {
        if (!subsystem || place->Place().SubsystemType() != subsystem->Type()) continue;
        CElement* element = place->Find(static_cast<std::uint32_t>(psId), indices);
        if (element != nullptr) list->push_back(ValueOf(*place, *element));
    }
    return list;
}

HostListRef<std::shared_ptr<KeyValue>> FrameworkFacade::GetDefaultValues() {
    if (!CanWrite(KES_FACADE_FUNCTION("GetDefaultValues"))) return nullptr;
    return ValuesOf(*mpDefaultChip);
}

}  // namespace VEMO::Kes::ConfigurationTools
