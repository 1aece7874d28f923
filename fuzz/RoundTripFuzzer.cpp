// What a text left in the model is written and read again: nothing is refused, the model is the same, and
// from the first writing on the text is the same too.

#include "FuzzFixture.h"
#include "model/CRawKeysWriter.h"
#include "model/CSubsystemConfig.h"
#include "support/TextWriting.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <set>
#include <sstream>
#include <utility>

namespace {

using namespace KesFuzz;

bool Fits(const IPayload& payload, const IMetadata& metadata);

const IMetadata* MetadataOf(const IPayload& payload) {
    const auto* user = dynamic_cast<const IMetadataUser*>(&payload);
    return user == nullptr ? nullptr : user->Metadata();
}

bool FieldFits(const IPayload& payload, const IMetadata& metadata) {
    if (!metadata.IsArray()) return Fits(payload, metadata);
    const auto* items = dynamic_cast<const CComplexPayload*>(&payload);
    return items != nullptr && items->Metadata() == nullptr && !items->GetFields().empty() &&
           std::ranges::all_of(items->GetFields(),
                               [&](const IPayload* item) { return Fits(*item, metadata); });
}

/// Whether the payload is one that the form of its own metadata gives, throughout.
bool Fits(const IPayload& payload, const IMetadata& metadata) {
    if (metadata.TypeName() == STR_OCTET_STRING) {
        if (payload.Type() != PAYLOAD_TYPE_STRING) return false;
        const std::size_t length = payload.Length();
        return std::cmp_greater_equal(length, metadata.Min()) && std::cmp_less_equal(length, metadata.Max());
    }
    if (MetadataOf(payload) != &metadata) return false;
    if (metadata.MetadataType() != METADATA_TYPE_STRUCT) return true;
    const auto& fields = static_cast<const CComplexPayload&>(payload).GetFields();
    return std::ranges::equal(
        fields, metadata.Detail()->Fields(),
        [](const IPayload* field, const CStructField* info) { return FieldFits(*field, *info->Metadata()); });
}

/// Values that do not come back as they were: where an item of an array or a field of a struct was given raw,
/// the written text gives it in the form of its metadata.
bool IsPartlyRaw(const CElement& element) {
    const auto wasGivenRaw = [](const IPayload* payload) { return MetadataOf(*payload) == nullptr; };
    const auto fits = [&](const IPayload* payload) { return Fits(*payload, *element.Metadata()); };
    return !std::ranges::all_of(element.Payloads(), wasGivenRaw) &&
           !std::ranges::all_of(element.Payloads(), fits);
}

/// An index is written with a sign, and read without.
bool HasIndexBeyondWriting(const CElement& element) {
    return std::ranges::any_of(element.Indices(), [](std::uint32_t index) {
        return std::cmp_greater(index, std::numeric_limits<std::int32_t>::max());
    });
}

/// Takes out the elements that a text cannot carry.
void DropElementsThatDoNotComeBack(const CChipConfig& config) {
    for (const auto& [number, place] : config.Subsystems()) {
        std::set<std::pair<std::uint32_t, std::vector<std::uint32_t>>> keys;
        for (const CElement* element : place->Elements()) {
            // Of a key without a value nothing is written.
            if (!element->Payloads().empty() && !HasIndexBeyondWriting(*element) && !IsPartlyRaw(*element))
                continue;
            keys.emplace(element->PsId(),
                         std::vector<std::uint32_t>(element->Indices().begin(), element->Indices().end()));
        }
        for (const auto& [psid, indices] : keys) place->RemoveElement(psid, &indices);
    }
}

/// Whether each place has a section that the reader takes. The form of a section on the eeprom has room for
/// the stores 1 to 15. A place that only a prefix named gets a section too, and with it counts towards the
/// stores.
bool PlacesComeBack(const CChipConfig& config) {
    std::set<std::pair<std::int32_t, std::int32_t>> stores;
    for (const auto& [number, place] : config.Subsystems()) {
        const CKesContext& at = place->Place();
        switch (at.Device()) {
            case IStoreManager::DEVICE_EEPROM:
                if (at.Store() < 1 || at.Store() > 15) return false;
                [[fallthrough]];
            case IStoreManager::DEVICE_OTP:
            case IStoreManager::DEVICE_SMEM:
            case IStoreManager::DEVICE_MTP:
                stores.emplace(at.Device(), at.Store());
                break;
            default:
                break;
        }
    }
    return stores.size() <= 15;
}

std::string Save(CChipConfig& config, const CKesContext& form) {
    CKesContext context = form;
    std::ostringstream stream;
    CKesWriter text(&stream, &Keys());
    CRawKeysWriter writer(text, Keys());
    if (!config.Write(writer, context)) Fault("not written", Messages::LastError(), Dump(config));
    return stream.str();
}

/// Every store of the one list is in the other. Their order and numbers are those of the sections, which may
/// come in another order than the lines of the text did.
bool HoldsStores(const std::list<CStoreInfo*>& stores, const std::list<CStoreInfo*>& wanted) {
    return std::ranges::all_of(wanted, [&](const CStoreInfo* one) {
        return std::ranges::any_of(stores, [&](const CStoreInfo* other) {
            return other->DeviceId() == one->DeviceId() && other->StoreId() == one->StoreId();
        });
    });
}

void CheckForm(CChipConfig& config, const Input& input, const CKesContext& form) {
    const std::string model = Dump(config);
    const std::string saved = Save(config, form);
    CChipConfig second;
    CKesContext context = input.Context();
    const Reading reading = Read(saved, second, context, Keys());
    if (!reading.good) Fault("the written text is refused", saved, reading.findings);
    if (reading.dump != model) Fault("another model\n" + saved, model, reading.dump);
    if (!HoldsStores(second.Stores(), config.Stores())) {
        Fault("stores are missing\n" + saved, DumpStores(config.Stores()), reading.stores);
    }
    const std::string again = Save(second, form);
    if (again != saved) Fault("another text", saved, again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input(data, size);
    CChipConfig config;
    CKesContext context = input.Context();
    // What the good lines of a faulty text left in the model is a model too.
    Read(input.text, config, context, Keys());
    if (!PlacesComeBack(config)) return 0;
    DropElementsThatDoNotComeBack(config);
    CheckForm(config, input, input.Context());
    CheckForm(config, input, Simple(input.Context()));
    return 0;
}
