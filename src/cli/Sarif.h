#pragma once

#include "cli/Json.h"
#include "cli/TextReport.h"

#include <vector>

namespace kes::cli {

/// The reports of one run of a command as a log of SARIF 2.1.0 (OASIS). `exit` is what the command ends with.
Json SarifLog(const std::vector<TextReport>& reports, ExitCode exit);

}  // namespace kes::cli
