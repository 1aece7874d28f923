#pragma once

#include "metadb/MetadataModel.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// A fault in a source, with its place.
struct SourceFault {
    SourcePlace place;
    std::string text;
};

/// Reads one source text, appends its systems to `systems` and its faults to `faults`. `file` is the number
/// used in its places. If there are faults, the systems must not be used. In addition to the schema of the
/// source, this checks relations between names, numbers and types. Default values are only checked to be one
/// logical line each.
void ReadJsonSource(std::string_view text, std::uint32_t file, std::vector<SystemData>& systems,
                    std::vector<SourceFault>& faults);

/// The source text of these systems. Reading it gives the same systems.
std::string WriteJsonSource(const std::vector<SystemData>& systems);

}  // namespace VemoKesConfigTools::metadb
