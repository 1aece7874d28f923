#pragma once

#include "cli/Globals.h"
#include "cli/ProgressBar.h"
#include "cli/TextReport.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kes::cli {

/// Which texts are to be checked, and how.
struct CheckWork {
    std::vector<std::string> files;
    bool summaries = false;
    std::size_t jobs = 1;  ///< in how many processes
};

/// Checks all texts and gives their reports in the order of the files, each as soon as its turn has come. The
/// library reads one text at a time, so that several take a process each. The bar covers the bytes of all.
/// Throws `Failure` when nothing can be checked at all.
void CheckTexts(const Globals& globals, const CheckWork& work,
                const std::function<void(const TextReport&)>& take, ProgressBar& bar);

}  // namespace kes::cli
