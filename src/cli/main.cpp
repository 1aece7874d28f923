#include "cli/ExitCodes.h"
#include "cli/Globals.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

namespace {

using namespace kes::cli;

/// The commands in the order of the help.
constexpr void (*COMMANDS[])(CLI::App&, Globals&) = {AddCheck, AddChips,    AddSubsystems,
                                                     AddKeys,  AddDescribe, AddMetadata};

int Run(int argc, char** argv) {
    Globals globals;
    globals.plugins = DefaultLocations().plugins;
    CLI::App app("Checks and explains the configuration texts of chips with several subsystems.", "kes");
    app.set_version_flag("--version", std::string("kes ") + KES_VERSION);
    app.add_flag("--no-color", globals.noColor, "No colour in messages (environment: NO_COLOR)");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "`kes COMMAND --help` tells more of a command.\n"
        "Exit codes: 0 fine, 1 the input has errors, 2 wrong usage, 3 a file, database or plug-in failed.");
    for (const auto add : COMMANDS) add(app, globals);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? EXIT_FINE : EXIT_USAGE;
    }
    return globals.run();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int code = Run(argc, argv);
        std::cout.flush();
        if (std::cout) return code;
        std::cerr << "kes: standard output cannot be written\n";
    } catch (const Failure& failure) {
        std::cerr << "kes: " << failure.what() << '\n';
        return failure.Code();
    } catch (const std::exception& error) {
        std::cerr << "kes: " << error.what() << '\n';
    }
    return EXIT_SYSTEM;
}
