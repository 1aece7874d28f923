#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace {

int PrintHelp(const CLI::App& app, const std::vector<std::string>& words) {
    const CLI::App* topic = &app;
    for (const std::string& word : words) {
        const CLI::App* next = FindCommand(*topic, word);
        if (next == nullptr) {
            std::vector<std::string> names;
            for (const CLI::App* command : CommandsOf(*topic)) names.push_back(command->get_name());
            const std::string near = DidYouMean(word, names);
            throw Failure(EXIT_USAGE, CommandPath(*topic) + " has no command \"" + word + "\"" +
                                          (near.empty() ? "" : ", " + near) + "\nsee kes --help");
        }
        topic = next;
    }
    // Not through the application, which gives the help of the command that was chosen: this one.
    std::cout << topic->get_formatter()->make_help(topic, CommandPath(*topic), CLI::AppFormatMode::Normal);
    return EXIT_FINE;
}

}  // namespace

void AddHelp(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("help", "Tell how a command is used");
    const auto words = std::make_shared<std::vector<std::string>>();
    command->add_option("COMMAND", *words, "The command; for one of several words all of them");
    AddExamples(*command, {{"kes help metadata build", "The same as kes metadata build --help"}});
    command->callback(
        [&app, &globals, words] { globals.run = [&app, words] { return PrintHelp(app, *words); }; });
}

}  // namespace kes::cli
