#include "cli/Globals.h"

#include "tool/config/OutputFile.h"
#include "tool/keys/KeyAddress.h"
#include "tool/output/Platform.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>

namespace kes::cli {

namespace {

std::string FromEnvironment(const char* variable, const std::string& otherwise) {
    const std::string value = TrustedVariable(variable);
    return value.empty() ? otherwise : value;
}

}  // namespace

Globals DefaultGlobals() {
    const std::filesystem::path prefix = std::filesystem::path(ExecutablePath()).parent_path().parent_path();
    Globals globals;
    globals.database = FromEnvironment("KES_DB", (prefix / KES_EXAMPLE_DATABASE).string());
    globals.plugins = FromEnvironment("KES_PLUGINS", (prefix / KES_PLUGIN_DIR).string());
    globals.chip = FromEnvironment("KES_CHIP", {});
    return globals;
}

void AddJsonOption(CLI::App& command, Globals& globals) {
    command.add_flag("--json", globals.json, "Print the results as one JSON document");
}

void AddLockOption(CLI::App& command, Globals& globals) {
    constexpr double LONGEST = 1'000'000;
    command
        .add_option_function<double>(
            "--lock-timeout",
            [&globals](double seconds) {
                constexpr double MILLISECONDS = 1000;
                globals.lockWait =
                    std::chrono::milliseconds(static_cast<std::int64_t>(seconds * MILLISECONDS));
            },
            "How long to wait for what another process has locked, in seconds (default: 10)")
        ->check(CLI::Range(0.0, LONGEST))
        ->option_text("SECONDS");
}

void AddPluginsOption(CLI::App& command, Globals& globals) {
    command
        .add_option(
            "--plugins", globals.plugins,
            "Folder with the plug-ins (environment: KES_PLUGINS; without both: that of the installation)")
        ->type_name("DIR");
}

void AddDatabaseOptions(CLI::App& command, Globals& globals, bool withChip) {
    command
        .add_option("--db", globals.database,
                    "Metadata database (environment: KES_DB; without both: that of the shipped example)")
        ->type_name("FILE");
    AddPluginsOption(command, globals);
    if (!withChip) return;
    command
        .add_option(
            "--chip", globals.chip,
            "Firmware system, by its version label (environment: KES_CHIP; without both: the one that the "
            "configuration itself names, or else the first of the database)")
        ->type_name("LABEL");
}

void AddPlaceOptions(CLI::App& command, PlaceOptions& options) {
    command.add_option("--subsystem", options.subsystem, "Only in this subsystem, by name or alias")
        ->type_name("NAME");
    command.add_option("--device", options.device, "Only on this device: rom, otp, smem, mtp, eeprom, ...")
        ->type_name("DEVICE");
    command.add_option("--store", options.store, "Only in the store of this number")->type_name("N");
}

void AddForceOption(CLI::App& command, OutputOptions& options) {
    command.add_flag(
        "--force", options.force,
        "Replace a file of another kind, one that is write-protected, and one with several hard links");
}

}  // namespace kes::cli
