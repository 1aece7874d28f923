#pragma once

#include "metadb/MetadataModel.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// A fault of a source, with its place.
struct SourceFault {
    SourcePlace place;
    std::string text;
};

/// Reads one source text into `systems`, behind what is there, and adds what is wrong with it to `faults`.
/// `file` is the number that its places get. What is read of a wrong source is of no use. Beyond the schema
/// of the source this checks what names, numbers and types must be to each other; default values are only
/// checked to be one logical line each.
void ReadJsonSource(std::string_view text, std::uint32_t file, std::vector<SystemData>& systems,
                    std::vector<SourceFault>& faults);

/// The source of these systems. Reading it gives the same systems again.
std::string WriteJsonSource(const std::vector<SystemData>& systems);

}  // namespace VemoKesConfigTools::metadb
