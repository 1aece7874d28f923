#include "cli/Help.h"

#include <sstream>
#include <utility>

namespace kes::cli {

void AddExamples(CLI::App& command, std::vector<Example> examples) {
    dynamic_cast<HelpFormatter&>(*command.get_formatter()).mExamples[&command] = std::move(examples);
}

const std::vector<Example>& ExamplesOf(const CLI::App& command) {
    static const std::vector<Example> none;
    const auto& all = dynamic_cast<const HelpFormatter&>(*command.get_formatter()).mExamples;
    const auto found = all.find(&command);
    return found == all.end() ? none : found->second;
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    std::ostringstream out;
    out << Formatter::make_description(app);
    const std::vector<Example>& examples = ExamplesOf(*app);
    if (!examples.empty()) out << "\nExamples:\n";
    for (const Example& example : examples) {
        CLI::detail::format_help(out, "  " + example.line, example.meaning, get_column_width());
    }
    out << '\n';
    return out.str();
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    std::string text = ValueName(*option);
    if (!text.empty()) text.insert(0, " ");
    if (TakesValue(*option) && option->get_expected_max() == CLI::detail::expected_max_vector_size)
        text += "...";
    if (option->get_required() && option->nonpositional()) text += " (required)";
    return text;
}

std::string CommandPath(const CLI::App& command) {
    const CLI::App* parent = command.get_parent();
    return (parent == nullptr ? "" : CommandPath(*parent) + " ") + command.get_name();
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& command) {
    return command.get_subcommands([](const CLI::App* child) { return !child->get_group().empty(); });
}

const CLI::App* FindCommand(const CLI::App& command, const std::string& name) {
    for (const CLI::App* child : CommandsOf(command)) {
        if (child->get_name() == name) return child;
    }
    return nullptr;
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

std::vector<std::string> ChoicesOf(const CLI::Option& option) {
    // CLI11 keeps the set only in the words that it adds to the name of the type: "TEXT:{a,b}".
    const std::string type = option.get_type_name();
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}', open);
    if (close == std::string::npos) return {};
    return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

std::string ValueName(const CLI::Option& option) {
    if (!TakesValue(option)) return {};
    const std::vector<std::string> choices = ChoicesOf(option);
    if (!choices.empty()) return CLI::detail::join(choices, "|");
    // The name of a positional says it already.
    return option.get_positional() ? std::string() : option.get_type_name();
}

}  // namespace kes::cli
