#pragma once

#include "cli/Json.h"
#include "cli/KeyAddress.h"

#include <memory>
#include <string>
#include <vector>

namespace kes::cli {

/// How a value stands to its default: "default", "changed", or "no_default" for a key that has none.
std::string StateOf(const api::KeyValue& key);

/// Whether a value is there and holds nothing: an empty text, no octets, no value at all.
bool IsEmptyValue(const api::KeyValue& key);

/// "subsystem", "device" and "store".
Json PlaceRecord(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store);

/// A key with its value: place, "number", "name" (null where the metadata does not know the key), "indexes",
/// "key" as a text has it, "value", "default" (null without one) and "state".
Json ValueRecord(const api::KeyValue& key);

/// The values of a configuration in the places of a filter.
std::vector<std::shared_ptr<api::KeyValue>> ValuesIn(api::FrameworkFacade& facade, const PlaceFilter& filter);

}  // namespace kes::cli
