#pragma once

#include "metadata/Metadata.h"
#include "metadata/Subsystem.h"
#include "metadb/MetadataModel.h"
#include "tool/output/Json.h"

#include <string>

namespace kes::tool {

// Keys as JSON records, with one name for each field in all commands. A field that the metadata leaves empty
// is left out; "subsystem", "number", "name", "label" and "type" are always there. The details of the keys
// must have been asked for.

/// What a list tells of a key: subsystem, number, name, label, type and indexes.
Json KeyRecord(const VEMO::Kes::ConfigurationTools::Subsystem& subsystem,
               const VEMO::Kes::ConfigurationTools::Metadata& key);

/// All that the metadata knows of a key. The stored subsystem is asked for its default values.
Json FullKeyRecord(const VEMO::Kes::ConfigurationTools::Subsystem& subsystem,
                   const VEMO::Kes::ConfigurationTools::Metadata& key,
                   const VemoKesConfigTools::metadb::SubsystemData& stored);

/// Adds "type" ("uint8", "text", "enum", ...), "type_name" for an enum or struct, and "array" with its
/// lengths.
void AddType(Json& record, const VEMO::Kes::ConfigurationTools::Metadata& key);

}  // namespace kes::tool
