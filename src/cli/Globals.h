#pragma once

#include "tool/keys/Settings.h"

#include <functional>

namespace CLI {
class App;
}

namespace kes::tool {
struct OutputOptions;
struct PlaceOptions;
}  // namespace kes::tool

namespace kes::cli {

using namespace kes::tool;

/// What the options say that several commands share, and what is to be run.
struct Globals : Settings {
    std::function<int()> run;  ///< set by the command that was chosen
};

/// What holds without options: the environment, or else what stands where the command is installed.
Globals DefaultGlobals();

/// Adds `--json` to a command that prints results.
void AddJsonOption(CLI::App& command, Globals& globals);
/// Adds `--lock-timeout` to a command that opens configurations or writes files.
void AddLockOption(CLI::App& command, Globals& globals);
void AddPluginsOption(CLI::App& command, Globals& globals);
/// Adds `--db`, `--plugins` and, where it makes sense, `--chip` to a command.
void AddDatabaseOptions(CLI::App& command, Globals& globals, bool withChip);
/// Adds `--subsystem`, `--device` and `--store` to a command.
void AddPlaceOptions(CLI::App& command, PlaceOptions& options);
/// Adds `--force`.
void AddForceOption(CLI::App& command, OutputOptions& options);

// Each adds one command, with its options and its help.
void AddCheck(CLI::App& app, Globals& globals);
void AddGet(CLI::App& app, Globals& globals);
void AddSet(CLI::App& app, Globals& globals);
void AddAdd(CLI::App& app, Globals& globals);
void AddUnset(CLI::App& app, Globals& globals);
void AddList(CLI::App& app, Globals& globals);
void AddDiff(CLI::App& app, Globals& globals);
void AddDefaults(CLI::App& app, Globals& globals);
void AddStores(CLI::App& app, Globals& globals);
void AddRaw(CLI::App& app, Globals& globals);
void AddChips(CLI::App& app, Globals& globals);
void AddSubsystems(CLI::App& app, Globals& globals);
void AddKeys(CLI::App& app, Globals& globals);
void AddDescribe(CLI::App& app, Globals& globals);
void AddRewrite(CLI::App& app, Globals& globals);
void AddConvert(CLI::App& app, Globals& globals);
void AddDevice(CLI::App& app, Globals& globals);
void AddMetadata(CLI::App& app, Globals& globals);
void AddCompletion(CLI::App& app, Globals& globals);
void AddHelp(CLI::App& app, Globals& globals);

}  // namespace kes::cli
