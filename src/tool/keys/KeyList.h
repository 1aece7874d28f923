#pragma once

#include "tool/keys/KeyAddress.h"
#include "tool/output/Json.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kes::tool {

/// How a value stands to its default: "default", "changed", or "no_default" for a key that has none.
std::string StateOf(const api::KeyValue& key);

/// Whether a value is there and holds nothing: an empty text, no octets, no value at all.
bool IsEmptyValue(const api::KeyValue& key);

/// "subsystem", "device" and "store".
Json PlaceRecord(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store);

/// Adds a text of bytes, null without one. JSON holds UTF-8 only: bytes that are none come out as U+FFFD, and
/// another field, with "_hex" behind its name, then has all of them as pairs of hexadecimal digits.
void AddBytes(Json& record, const std::string& field, const std::optional<std::string>& bytes);

/// A key without its value: place, "number", "name", "indexes" and "key".
Json PlacedKeyRecord(const api::KeyValue& key);

/// A key with its value: place, "number", "name" (null where the metadata does not know the key), "indexes",
/// "key" as a text has it, "value", "default" (null without one) and "state".
Json ValueRecord(const api::KeyValue& key);

/// The values of a configuration in the places of a filter.
std::vector<std::shared_ptr<api::KeyValue>> ValuesIn(api::FrameworkFacade& facade, const PlaceFilter& filter);

}  // namespace kes::tool
