#include "tool/keys/KeyList.h"

#include "tool/keys/DeviceWords.h"

#include <utility>

namespace kes::tool {

std::string StateOf(const api::KeyValue& key) {
    if (!key.DefaultBytes()) return "no_default";
    return key.IsDefault() ? "default" : "changed";
}

bool IsEmptyValue(const api::KeyValue& key) {
    const std::string& value = key.ValueBytes();
    return value.empty() || value == "\"\"" || value == "[ ]";
}

Json PlaceRecord(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store) {
    return {{"subsystem", Text(api::Subsystem::NameOf(subsystem))},
            {"device", DeviceName(device)},
            {"store", store}};
}

void AddBytes(Json& record, const std::string& field, const std::optional<std::string>& bytes) {
    record[field] = bytes ? Json(*bytes) : Json();
    if (!bytes || Text(*bytes) == *bytes) return;
    std::string digits;
    for (const char c : *bytes) {
        constexpr const char* DIGITS = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        digits.append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 0xFU]);
    }
    record[field + "_hex"] = std::move(digits);
}

Json PlacedKeyRecord(const api::KeyValue& key) {
    Json record = PlaceRecord(key.SubsystemType(), key.DeviceId(), key.StoreId());
    record["number"] = static_cast<std::uint32_t>(key.Psid());
    record["name"] = key.Name().IsNull() ? Json() : Json(Text(key.Name()));
    record["indexes"] = key.Indexes();
    record["key"] = KeyText(key);
    return record;
}

Json ValueRecord(const api::KeyValue& key) {
    Json record = PlacedKeyRecord(key);
    AddBytes(record, "value", key.ValueBytes());
    AddBytes(record, "default", key.DefaultBytes());
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

}  // namespace kes::tool
