#include "cli/Complete.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "cli/ManPages.h"
#include "files/SignalCleanup.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"
#include "tool/output/Printable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kes::cli;

struct Command {
    std::string_view name;
    void (*add)(CLI::App&, Globals&);
};

/// The commands in the order of the help.
constexpr Command COMMANDS[] = {
    {"check", AddCheck},
    {"get", AddGet},
    {"set", AddSet},
    {"add", AddAdd},
    {"unset", AddUnset},
    {"list", AddList},
    {"diff", AddDiff},
    {"rewrite", AddRewrite},
    {"convert", AddConvert},
    {"device", AddDevice},
    {"defaults", AddDefaults},
    {"stores", AddStores},
    {"raw", AddRaw},
    {"chips", AddChips},
    {"subsystems", AddSubsystems},
    {"keys", AddKeys},
    {"describe", AddDescribe},
    {"metadata", AddMetadata},
    {"completion", AddCompletion},
    {"help", AddHelp},
};

/// The words in the order that CLI11 wants, the last first. It would split "[00, 11]", which can be a value,
/// at its commas and take the brackets away; a blank in front keeps it whole.
std::vector<std::string> ForParser(const std::vector<std::string>& words) {
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    for (std::string& word : reversed) {
        if (word.starts_with('[') && word.ends_with(']')) word.insert(0, " ");
    }
    return reversed;
}

/// "--output" and all other options of a command with a long name.
std::vector<std::string> OptionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

/// The message about a word in place of one of the commands of `command`.
std::string UnknownCommand(const CLI::App& command, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::App* one : CommandsOf(command)) names.push_back(one->get_name());
    const std::string near = DidYouMean(word, names);
    return "unknown command \"" + word + "\"" + (near.empty() ? "" : ", " + near) + "\nsee " +
           CommandPath(command) + " --help";
}

/// What is wrong with the command line. A word that is no command tells more than that one is missing.
std::string UsageError(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App* chosen = &app;
    while (!chosen->get_subcommands().empty()) chosen = chosen->get_subcommands().front();
    const std::string hint = "\nsee " + CommandPath(*chosen) + " --help";
    // What a command does not take goes up to the application.
    const std::vector<std::string> extras = app.remaining(/*recurse=*/true);
    for (const std::string& word : extras) {
        if (!word.starts_with("--") || word == "--") continue;
        const std::string option = word.substr(0, word.find('='));
        const std::string near = DidYouMean(option, OptionsOf(*chosen));
        std::string text = "unknown option \"" + option;
        return text.append(near.empty() ? "\"" : "\", ").append(near).append(hint);
    }
    const bool isWord = !extras.empty() && !extras.front().starts_with('-');
    if (isWord && !CommandsOf(*chosen).empty()) return UnknownCommand(*chosen, extras.front());
    return error.what() + hint;
}

std::string ExitCodeLine() {
    std::string line = "Exit codes:";
    for (const auto& [code, meaning] : EXIT_CODES) {
        line += (code == EXIT_FINE ? " " : "; ") + std::to_string(code) + " " + meaning;
    }
    return line + ".";
}

/// Defines the command line. A first word that names a command needs the options of no other one, but for
/// "help".
void Define(CLI::App& app, Globals& globals, const std::string& firstWord) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("--version", std::string("kes ") + KES_VERSION);
    app.add_flag(
        "--no-color", globals.noColor,
        "No colour in messages (environment: NO_COLOR; CLICOLOR_FORCE=1 asks for colour where there is no "
        "terminal)");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer("`kes help COMMAND` tells more of a command.\n" + ExitCodeLine());
    AddExamples(app, {{"kes check board.ktf", "Say what is wrong with a text"},
                      {"kes set board.ktf max_acl_links 3", "Change a key, and nothing else"},
                      {"kes list board.ktf --changed", "What is not at its default"},
                      {"kes keys antenna", "Look for keys"},
                      {"kes describe tx_power_limit", "Tell all that is known of a key"}});
    const auto* const only = std::ranges::find(COMMANDS, firstWord, &Command::name);
    if (only != std::end(COMMANDS) && only->name != "help") return only->add(app, globals);
    for (const Command& command : COMMANDS) command.add(app, globals);
}

int Run(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    Globals globals = DefaultGlobals();
    CLI::App app(
        "Checks, changes, compares and explains the configuration texts of chips with several subsystems.",
        "kes");
    Define(app, globals, words.empty() ? std::string() : words[0]);
    // Two commands for scripts only: they look at the definitions and are none themselves.
    if (words.size() > 1 && words[0] == "__complete") {
        return Complete(app, globals, {words.begin() + (words[1] == "--" ? 2 : 1), words.end()});
    }
    if (words.size() == 2 && words[0] == "__man") return WriteManPages(app, words[1]);
    // A first word that is no command is what is wrong, whatever a later one would be.
    if (!words.empty() && !words[0].starts_with('-') && FindCommand(app, words[0]) == nullptr) {
        throw Failure(EXIT_USAGE, UnknownCommand(app, words[0]));
    }
    try {
        app.parse(ForParser(words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw Failure(EXIT_USAGE, UsageError(app, error));
        app.exit(error);
        return EXIT_FINE;
    }
    return globals.run();
}

}  // namespace

int main(int argc, char** argv) {
    VemoKesConfigTools::files::RemoveTemporariesOnSignals();
    try {
        const int code = Run(argc, argv);
        std::cout.flush();
        if (std::cout) return code;
        PrintError("kes: standard output cannot be written\n");
    } catch (const Failure& failure) {
        PrintError("kes: " + PrintableLines(failure.what()) + "\n");
        return failure.Code();
    } catch (const std::exception& error) {
        PrintError("kes: " + PrintableLines(error.what()) + "\n");
    }
    return EXIT_SYSTEM;
}
