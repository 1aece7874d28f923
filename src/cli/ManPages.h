#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kes::cli {

/// Writes a man page of each command into a folder, which is made: "kes.1", "kes-check.1", ... All they say
/// comes from the definitions of the commands. Throws `Failure`.
int WriteManPages(const CLI::App& app, const std::string& folder);

}  // namespace kes::cli
