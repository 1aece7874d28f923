#include "cli/Globals.h"

#include "cli/Platform.h"

#include <CLI/CLI.hpp>
#include <filesystem>

namespace kes::cli {

Locations DefaultLocations() {
    const std::filesystem::path prefix = std::filesystem::path(ExecutablePath()).parent_path().parent_path();
    return {(prefix / KES_PLUGIN_DIR).string(), (prefix / KES_EXAMPLE_DATABASE).string()};
}

void AddDatabaseOptions(CLI::App& command, Globals& globals, bool withChip) {
    const Locations defaults = DefaultLocations();
    globals.database = defaults.database;
    globals.plugins = defaults.plugins;
    command
        .add_option("--db", globals.database,
                    "Metadata database (environment: KES_DB; without both: that of the shipped example)")
        ->envname("KES_DB")
        ->type_name("FILE");
    command
        .add_option(
            "--plugins", globals.plugins,
            "Folder with the plug-ins (environment: KES_PLUGINS; without both: that of the installation)")
        ->envname("KES_PLUGINS")
        ->type_name("DIR");
    if (withChip) {
        command
            .add_option(
                "--chip", globals.chip,
                "Firmware system, by its version label (environment: KES_CHIP; without both: the first "
                "of the database)")
            ->envname("KES_CHIP")
            ->type_name("LABEL");
    }
}

}  // namespace kes::cli
