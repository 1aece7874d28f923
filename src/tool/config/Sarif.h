#pragma once

#include "tool/config/ConfigReport.h"
#include "tool/output/Json.h"

#include <vector>

namespace kes::tool {

/// The reports of one run of a command as a log of SARIF 2.1.0 (OASIS). `exit` is what the command ends with.
Json SarifLog(const std::vector<ConfigReport>& reports, ExitCode exit);

}  // namespace kes::tool
