#pragma once

#include "tool/output/Json.h"

#include <string>

namespace kes::tool {

/// Prints what `FullKeyRecord` has of a key on standard output, for people. `system` is the label of its
/// system.
void PrintDescription(const Json& record, const std::string& system);

}  // namespace kes::tool
