// Single values. A value is read by writing it as text into the buffer, and set by reading a text from there,
// so that the grammar and the messages of text files apply to it.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/CConfigTransaction.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

/// The name of a device on which values can be set; null for any other.
const char* DeviceWord(std::int32_t device) {
    switch (device) {
        case DEVICE_TYPE_OTP:
            return "OTP";
        case DEVICE_TYPE_SMEM:
            return "SMEM";
        case DEVICE_TYPE_MTP:
            return "MTP";
        case DEVICE_TYPE_EEPROM:
            return "EEPROM";
        default:
            return nullptr;
    }
}

}  // namespace

std::string FrameworkFacade::indexedPsid(std::int32_t psId, const IndexListRef& indexes) {
    std::string key = std::to_string(psId);
    for (const std::int32_t index : indexes) key.append(1, '.').append(std::to_string(index));
    return key;
}

CKesContext FrameworkFacade::QuestionContext(const Subsystem& subsystem, std::int32_t layer) const {
    CKesContext context = mOwningChip ? ChipContext(*mOwningChip) : CKesContext();
    context.SetSubsystemType(subsystem.Type());
    context.SetLayerNumber(layer);
    return context;
}

bool FrameworkFacade::HasValue() const { return mpFileChip && mpFileChip->HasElements(); }

bool FrameworkFacade::HasValue(const SubsystemRef& subsystem) const {
    return mpFileChip && subsystem &&
           mpFileChip->HasElements(static_cast<SubSystemTypeEnum>(subsystem->Type()));
}

bool FrameworkFacade::HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer) const {
    if (layer <= LayerIndexVals::Defaults || !mpFileChip || !subsystem) return false;
    return mpFileChip->HasElements(static_cast<std::uint32_t>(psId),
                                   static_cast<SubSystemTypeEnum>(subsystem->Type()),
                                   static_cast<std::uint16_t>(layer));
}

bool FrameworkFacade::HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer,
                               const IndexListRef& indexes) const {
    if (layer <= LayerIndexVals::Defaults || !mpFileChip || !subsystem) return false;
    CKesContext context = QuestionContext(*subsystem, layer);
    return mpFileChip->Element(indexedPsid(psId, indexes), context).IsValid();
}

HostString FrameworkFacade::GetValue(const SubsystemRef& subsystem, std::int32_t psId,
                                     const IndexListRef& indexes, std::int32_t layer) {
    std::string text;
    return GetValueBytes(subsystem, psId, indexes, layer, text) ? HostString(text) : HostString();
}

bool FrameworkFacade::GetValueBytes(const SubsystemRef& subsystem, std::int32_t psId,
                                    const IndexListRef& indexes, std::int32_t layer, std::string& text) {
    if (!CanWrite(KES_FACADE_FUNCTION("GetValue")) || !subsystem) return false;
    CKesContext context = QuestionContext(*subsystem, layer);
    std::optional<std::string> found =
        TextOf(mpFileChip->Element(indexedPsid(psId, indexes), context), context);
    if (!found) return false;
    text = std::move(*found);
    return true;
}

/// An element as the text writer writes it outside of a document; empty if the element is not valid.
std::optional<std::string> FrameworkFacade::TextOf(const CElement& element, CKesContext& context) {
    EmptyBuffer();
    if (!element.IsValid()) return std::nullopt;
    // `Write` does not change the element, but its signature is fixed and not const.
    const_cast<CElement&>(element).Write(*mpBuffWriter, context);
    return mpBuffer->str();
}

bool FrameworkFacade::SetValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                               std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                               const HostString& value) {
    return SetAddValue(subsystem, psId, indexes, device, store, layerIndex, Framework::GetString(value),
                       /*add=*/false);
}

bool FrameworkFacade::AddValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                               std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                               const HostString& value) {
    return SetAddValue(subsystem, psId, indexes, device, store, layerIndex, Framework::GetString(value),
                       /*add=*/true);
}

bool FrameworkFacade::SetValueBytes(const SubsystemRef& subsystem, std::int32_t psId,
                                    const IndexListRef& indexes, std::int32_t device, std::int32_t store,
                                    std::int32_t layerIndex, const std::string& value) {
    return SetAddValue(subsystem, psId, indexes, device, store, layerIndex, value, /*add=*/false);
}

bool FrameworkFacade::AddValueBytes(const SubsystemRef& subsystem, std::int32_t psId,
                                    const IndexListRef& indexes, std::int32_t device, std::int32_t store,
                                    std::int32_t layerIndex, const std::string& value) {
    return SetAddValue(subsystem, psId, indexes, device, store, layerIndex, value, /*add=*/true);
}

bool FrameworkFacade::SetAddValue(const SubsystemRef& subsystem, std::int32_t psId,
                                  const IndexListRef& indexes, std::int32_t device, std::int32_t store,
                                  std::int32_t layerIndex, const std::string& value, bool add) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("SetAddValue");
    if (layerIndex <= LayerIndexVals::Defaults || !subsystem) return false;
    if (!CanRead(FUNCTION)) return false;
    CKesContext context = FileContext(*mOwningChip);
    context.SetSubsystemType(subsystem->Type());
    context.SetTag(STR_INSERT_MODE, add ? STR_APPEND : STR_OVERWRITE);
    EmptyBuffer();
    const char* word = DeviceWord(device);
    if (word == nullptr) return Fail(FUNCTION, ERROR_DATA, "Unexpected device");

    const std::string name = Framework::GetString(subsystem->Name());
    std::string text;
    if (device == DEVICE_TYPE_EEPROM) {
        text.append("file=").append(name).append(std::to_string(store)).append("\n");
    } else {
        text.append("subsystem=").append(name).append("\ndevice=").append(word);
        text.append("\nstore=").append(std::to_string(store)).append("\n");
    }
    text.append(indexedPsid(psId, indexes)).append("=").append(value).append("\n");
    mpBuffer->str(std::move(text));
    // The value may consist of several lines, of which a later one may be refused: undo the earlier ones
    // then.
    CConfigTransaction change(*mpFileChip);
    if (!mpTextReader->Read(context)) return false;
    change.Commit();
    return true;
}

bool FrameworkFacade::RemoveValue(const SubsystemRef& subsystem, std::int32_t psId,
                                  const IndexListRef& indexes, std::int32_t device, std::int32_t store) {
    if (!mpFileChip || !subsystem) return false;
    const std::vector<std::uint32_t> indices(indexes.begin(), indexes.end());
    bool removed = false;
    for (const auto& [number, place] : mpFileChip->Subsystems()) {
        const CKesContext& where = place->Place();
        if (where.SubsystemType() != subsystem->Type() || where.Device() != device || where.Store() != store)
            continue;
        if (place->Find(static_cast<std::uint32_t>(psId), indices) == nullptr) continue;
        place->RemoveElement(static_cast<std::uint32_t>(psId), &indices);
        removed = true;
    }
    return removed;
}

}  // namespace VEMO::Kes::ConfigurationTools
