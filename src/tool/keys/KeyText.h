#pragma once

#include "metadata/Metadata.h"
#include "tool/keys/Session.h"
#include "tool/output/Json.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kes::tool {

// How keys and their types read for people.

/// The subsystems of a chip with this name or alias, all for an empty one. Throws `Failure` for none.
std::vector<std::shared_ptr<api::Subsystem>> SubsystemsNamed(Session& session, const api::Chip& chip,
                                                             const std::string& name);

/// "0x1234", with four digits at least.
std::string KeyNumber(std::uint32_t number);
std::string KeyNumber(const api::Metadata& key);

/// ".CHANNEL.MODE" for a key with indexes of these names.
std::string IndexSuffix(const api::Metadata& key);

/// "uint8", "enum", "text", ...: the type without its name and its lengths. The details of the key must have
/// been asked for.
std::string TypeWord(const api::Metadata& key);

/// "uint8 [1..4]", "enum tx_mode", "text", ... The details of the key must have been asked for.
std::string TypeText(const api::Metadata& key);

/// The same for a JSON record of a key or field.
std::string TypeText(const Json& record);

/// Whether a field is an integer of its own number of bits, and not of the width of a type.
bool IsBitField(const api::StructField& field);

/// The lowest and the highest value of an integer field: what its record says and its bits have room for.
std::pair<std::int64_t, std::int64_t> FieldRange(const api::StructField& field);

/// A line of the text format with a value that the metadata allows. The details of the key must have been
/// asked for.
std::string ExampleLine(const api::Metadata& key);

}  // namespace kes::tool
