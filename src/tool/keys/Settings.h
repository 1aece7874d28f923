#pragma once

#include <chrono>
#include <string>

namespace kes::tool {

/// What a user has chosen for all that is done with configurations.
struct Settings {
    std::string database;
    std::string plugins;
    std::string chip;  ///< a system version label; empty for the default
    bool noColor = false;
    bool json = false;  ///< results as one JSON document
    /// How long to wait for a file that another process has locked.
    std::chrono::milliseconds lockWait = std::chrono::seconds(10);
};

}  // namespace kes::tool
