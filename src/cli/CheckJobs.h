#pragma once

#include "cli/Globals.h"
#include "tool/config/ConfigReport.h"
#include "tool/config/ConfigSource.h"
#include "tool/output/ProgressBar.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kes::cli {

/// Which configurations are to be checked, and how.
struct CheckWork {
    std::vector<ConfigSource> sources;
    bool summaries = false;
    std::size_t jobs = 1;  ///< in how many processes
};

/// Takes a finding in the file of this name.
using TakeFinding = std::function<void(const std::string& file, const Finding&)>;

/// Checks all configurations and gives their reports in their order, each as soon as its turn has come. The
/// library reads one at a time, so that several take a process each. With one process `found`, if there is
/// one, is handed the findings in a text while it is read, so that any number takes no memory; reports have
/// those that it was not. The bar covers the bytes of all texts. Throws `Failure` when nothing can be checked
/// at all.
void CheckConfigs(const Globals& globals, const CheckWork& work, const TakeFinding& found,
                  const std::function<void(const ConfigReport&)>& take, ProgressBar& bar);

}  // namespace kes::cli
