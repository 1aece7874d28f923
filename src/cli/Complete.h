#pragma once

#include "cli/Globals.h"

#include <string>
#include <vector>

namespace kes::cli {

/// Answers the scripts of `kes completion`: prints what may stand in place of the last of `words`, which are
/// those of a command line behind "kes" up to the cursor. One candidate a line, behind it a tab and what it
/// means. The line
/// ":files" or ":folders" asks the shell for its own. What cannot be found out is left out in silence.
int Complete(const CLI::App& app, Globals globals, const std::vector<std::string>& words);

}  // namespace kes::cli
