#include "cli/CompletionScripts.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/output/ExitCodes.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <set>

namespace kes::cli {

void AddCompletion(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("completion", "Print the script that completes kes in a shell");
    const auto shell = std::make_shared<std::string>();
    command->add_option("SHELL", *shell, "The shell")
        ->required()
        ->check(CLI::IsMember(std::set<std::string>{"bash", "zsh", "fish"}));
    AddExamples(*command, {{"source <(kes completion bash)", "In this bash, or for all in ~/.bashrc"},
                           {"source <(kes completion zsh)", "In this zsh, or in ~/.zshrc behind compinit"},
                           {"kes completion fish | source", "In this fish"}});
    command->footer(
        "An installation puts the scripts where the shells look for them. Keys, chips and subsystems come "
        "from the database that --db or KES_DB names.");
    command->callback([&globals, shell] {
        globals.run = [shell] {
            std::cout << (*shell == "bash"  ? BASH_COMPLETION
                          : *shell == "zsh" ? ZSH_COMPLETION
                                            : FISH_COMPLETION);
            return EXIT_FINE;
        };
    });
}

}  // namespace kes::cli
