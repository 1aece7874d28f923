#pragma once

// What the fuzz targets of binary formats share: one read of an input, and what must hold of it.

#include "FuzzFixture.h"
#include "plugins/binary/CBinaryReader.h"

#include <memory>
#include <optional>
#include <string>

namespace KesFuzz {

/// A read into an empty configuration: nothing when it was refused, which must leave nothing and an error.
inline std::unique_ptr<CChipConfig> Taken(CBinaryReader& reader, const std::string& system) {
    const Messages messages;
    auto config = std::make_unique<CChipConfig>();
    reader.SetMetadataProvider(&Keys());
    reader.SetObserver(config.get());
    CKesContext context;
    context.SetChip(system);
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    const bool good = reader.Read(context);
    const std::string error = Messages::LastError();
    if (good != error.empty()) Fault("result and error disagree", good ? "good" : "refused", error);
    if (good) return config;
    if (!config->Subsystems().empty() || !config->Stores().empty())
        Fault("refused, and something is left", Dump(*config), error);
    return nullptr;
}

/// Both must hold the same, whichever is asked.
inline void ExpectSame(const std::string& what, const CChipConfig& first, const CChipConfig& second) {
    for (const auto& difference : {first.FirstDifference(second), second.FirstDifference(first)})
        if (difference) Fault(what + ": " + *difference, Dump(first), Dump(second));
}

}  // namespace KesFuzz
