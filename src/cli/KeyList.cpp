#include "cli/KeyList.h"

#include "cli/DeviceNames.h"

namespace kes::cli {

std::string StateOf(const api::KeyValue& key) {
    if (key.Default().IsNull()) return "no_default";
    return key.IsDefault() ? "default" : "changed";
}

bool IsEmptyValue(const api::KeyValue& key) {
    const std::string value = Text(key.Value());
    return value.empty() || value == "\"\"" || value == "[ ]";
}

Json PlaceRecord(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store) {
    return {{"subsystem", Text(api::Subsystem::NameOf(subsystem))},
            {"device", DeviceName(device)},
            {"store", store}};
}

Json ValueRecord(const api::KeyValue& key) {
    const auto textOrNull = [](const api::HostString& text) {
        return text.IsNull() ? Json() : Json(Text(text));
    };
    Json record = PlaceRecord(key.SubsystemType(), key.DeviceId(), key.StoreId());
    record["number"] = static_cast<std::uint32_t>(key.Psid());
    record["name"] = textOrNull(key.Name());
    record["indexes"] = key.Indexes();
    record["key"] = KeyText(key);
    record["value"] = Text(key.Value());
    record["default"] = textOrNull(key.Default());
    record["state"] = StateOf(key);
    return record;
}

std::vector<std::shared_ptr<api::KeyValue>> ValuesIn(api::FrameworkFacade& facade,
                                                     const PlaceFilter& filter) {
    std::vector<std::shared_ptr<api::KeyValue>> values;
    for (const auto& value : facade.GetValues()) {
        if (filter.Takes(*value)) values.push_back(value);
    }
    return values;
}

}  // namespace kes::cli
