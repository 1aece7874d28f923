#pragma once

#include "tool/output/ExitCodes.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

namespace kes::cli {

// What help, man pages and completion read from the definitions of commands and options.

/// A command line that shows a use of a command, and what it does.
struct Example {
    std::string line;
    std::string meaning;
};

/// Adds examples to a command. They stand first in its help. The application must have a `HelpFormatter`.
void AddExamples(CLI::App& command, std::vector<Example> examples);
/// The examples of a command, empty for one without.
const std::vector<Example>& ExamplesOf(const CLI::App& command);

/// Lays the help out, with the examples of the commands, which it keeps.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_description(const CLI::App* app) const override;
    std::string make_option_opts(const CLI::Option* option) const override;

private:
    friend void AddExamples(CLI::App& command, std::vector<Example> examples);
    friend const std::vector<Example>& ExamplesOf(const CLI::App& command);

    std::map<const CLI::App*, std::vector<Example>> mExamples;
};

struct ExitCodeMeaning {
    tool::ExitCode code;
    const char* meaning;
};
inline constexpr ExitCodeMeaning EXIT_CODES[] = {
    {tool::EXIT_FINE, "fine"},
    {tool::EXIT_FINDINGS, "the input has errors, two texts differ, or what was looked for is not there"},
    {tool::EXIT_USAGE, "wrong usage: an unknown command, option, chip or subsystem"},
    {tool::EXIT_SYSTEM, "the system failed: a file, the database, a plug-in, standard output"},
    {tool::EXIT_EMPTY, "a key that was asked for is there, but empty"},
};

/// "kes metadata build": the command as it is typed.
std::string CommandPath(const CLI::App& command);
/// The commands below a command that people are told of, in the order of the help.
std::vector<const CLI::App*> CommandsOf(const CLI::App& command);
/// The command of this name below another, null when there is none.
const CLI::App* FindCommand(const CLI::App& command, const std::string& name);
/// Whether an option stands with a value, and not alone.
bool TakesValue(const CLI::Option& option);
/// The values of an option that takes only certain ones (`CLI::IsMember`), empty for any other.
std::vector<std::string> ChoicesOf(const CLI::Option& option);
/// What the help calls the value of an option: "FILE", "text|json"; empty for a flag.
std::string ValueName(const CLI::Option& option);

}  // namespace kes::cli
