// Pages in the language of man(7). They have no date, so that two builds give equal bytes.

#include "cli/ManPages.h"

#include "cli/Help.h"
#include "files/Files.h"
#include "files/ReplaceFile.h"
#include "tool/output/ExitCodes.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>
#include <utility>

namespace kes::cli {

namespace {

/// A text as the formatter takes it: no letter means anything but itself.
std::string Plain(const std::string& text) {
    std::string plain;
    for (const char c : text) {
        switch (c) {
            case '\\':
                plain += "\\e";
                break;
            case '-':
                plain += "\\-";
                break;
            case '\'':
                plain += "\\(aq";
                break;
            case '`':
                plain += "\\(ga";
                break;
            case '^':
                plain += "\\(ha";
                break;
            case '~':
                plain += "\\(ti";
                break;
            default:
                plain += c;
        }
    }
    return plain.starts_with('.') ? "\\&" + plain : plain;
}

std::string Bold(const std::string& text) { return "\\fB" + Plain(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Plain(text) + "\\fR"; }

std::string Upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string PageName(const CLI::App& command) {
    std::string name = CommandPath(command);
    std::ranges::replace(name, ' ', '-');
    return name;
}

/// The option's names and value: bold what is typed, italic what stands for something.
std::string OptionHead(const CLI::Option& option) {
    if (option.get_positional()) return Italic(option.get_name(true));
    std::string head;
    for (const std::string& name : CLI::detail::split(option.get_name(false, true), ',')) {
        head += (head.empty() ? "" : ", ") + Bold(name);
    }
    const std::string value = ValueName(option);
    return value.empty() ? head : head + " " + (ChoicesOf(option).empty() ? Italic(value) : Bold(value));
}

/// Writes one page.
class Page {
public:
    Page(std::ostream& out, const CLI::App& command) : mOut(out), mCommand(command) {
        for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
            for (const CLI::Option* option : app->get_options()) {
                const bool ofParent =
                    app != &command && (option == app->get_help_ptr() || option == app->get_version_ptr());
                if (!option->get_group().empty() && !ofParent) mOptions.push_back(option);
            }
        }
    }

    void Write() {
        mOut << ".TH " << Plain(Upper(PageName(mCommand))) << " 1 \"\" \"kesconfigtools " << KES_VERSION
             << "\"\n";
        Section("NAME");
        std::string summary = mCommand.get_description();
        if (summary.ends_with('.')) summary.pop_back();
        mOut << Plain(PageName(mCommand)) << " \\- " << Plain(summary) << '\n';
        Synopsis();
        Description();
        Options();
        Commands();
        Environment();
        ExitStatus();
        Examples();
        SeeAlso();
    }

private:
    void Section(const char* name) { mOut << ".SH " << name << '\n'; }
    void Entry(const std::string& head, const std::string& text) {
        mOut << ".TP\n" << head << '\n' << Plain(text) << '\n';
    }

    void Synopsis() {
        Section("SYNOPSIS");
        mOut << Bold(CommandPath(mCommand));
        if (!CommandsOf(mCommand).empty()) mOut << ' ' << Italic("COMMAND");
        mOut << " [" << Italic("OPTIONS") << ']';
        for (const CLI::Option* option : mOptions) {
            if (!option->get_positional()) continue;
            const bool several = option->get_items_expected_max() > 1;
            const std::string name = OptionHead(*option) + (several ? "..." : "");
            mOut << ' ' << (option->get_required() ? name : "[" + name + "]");
        }
        if (!CommandsOf(mCommand).empty()) mOut << " ...";
        mOut << '\n';
    }

    void Description() {
        Section("DESCRIPTION");
        const std::string description = mCommand.get_description();
        mOut << Plain(description) << (description.ends_with('.') ? "\n" : ".\n");
        std::istringstream footer(mCommand.get_footer());
        for (std::string line; std::getline(footer, line);) {
            if (line.starts_with(EXIT_CODE)) {
                mExitStatus = line;
            } else if (!line.empty()) {
                mOut << ".PP\n" << Plain(line) << '\n';
            }
        }
    }

    void Options() {
        Section("OPTIONS");
        for (const CLI::Option* option : mOptions) {
            std::string text = option->get_description();
            if (option->get_positional() && !ChoicesOf(*option).empty()) text += ": " + ValueName(*option);
            Entry(OptionHead(*option), text);
        }
    }

    void Commands() {
        const std::vector<const CLI::App*> commands = CommandsOf(mCommand);
        if (commands.empty()) return;
        Section("COMMANDS");
        for (const CLI::App* command : commands) {
            Entry("\\fB" + Plain(PageName(*command)) + "\\fR(1)", command->get_description());
        }
    }

    /// The variables that the descriptions of the options name.
    void Environment() {
        constexpr std::string_view MARK = "environment: ";
        std::map<std::string, std::string> variables;
        for (const CLI::Option* option : mOptions) {
            const std::string text = option->get_description();
            const std::size_t at = text.find(MARK);
            if (at == std::string::npos) continue;
            const std::size_t from = at + MARK.size();
            variables.emplace(text.substr(from, text.find_first_of(" ;,)", from) - from),
                              option->get_lnames().front());
        }
        if (variables.empty()) return;
        Section("ENVIRONMENT");
        for (const auto& [variable, name] : variables) {
            Entry(Bold(variable), "The same as the option --" + name + ", which wins over it.");
        }
    }

    void ExitStatus() {
        Section("EXIT STATUS");
        for (const auto& [code, meaning] : EXIT_CODES)
            Entry(Bold(std::to_string(code)), std::string(meaning) + ".");
        // The command's own words, where it has any.
        if (mCommand.get_parent() != nullptr && !mExitStatus.empty())
            mOut << ".PP\n" << Plain(mExitStatus) << '\n';
    }

    void Examples() {
        if (ExamplesOf(mCommand).empty()) return;
        Section("EXAMPLES");
        for (const Example& example : ExamplesOf(mCommand)) Entry(Bold(example.line), example.meaning + ".");
    }

    void SeeAlso() {
        std::vector<std::string> pages;
        for (const CLI::App* app = mCommand.get_parent(); app != nullptr; app = app->get_parent())
            pages.push_back(PageName(*app));
        for (const CLI::App* child : CommandsOf(mCommand)) pages.push_back(PageName(*child));
        if (const CLI::App* parent = mCommand.get_parent()) {
            for (const CLI::App* sibling : CommandsOf(*parent)) {
                if (sibling != &mCommand) pages.push_back(PageName(*sibling));
            }
        }
        std::ranges::sort(pages);
        Section("SEE ALSO");
        for (std::size_t i = 0; i < pages.size(); ++i) {
            mOut << "\\fB" << Plain(pages[i]) << "\\fR(1)" << (i + 1 == pages.size() ? "\n" : ",\n");
        }
    }

    static constexpr const char* EXIT_CODE = "Exit code";

    std::ostream& mOut;
    const CLI::App& mCommand;
    std::vector<const CLI::Option*> mOptions;  ///< positionals first, then those of the commands above
    std::string mExitStatus;
};

void WritePages(const CLI::App& command, const std::string& folder) {
    std::ostringstream page;
    Page(page, command).Write();
    VemoKesConfigTools::files::ReplaceFile(VemoKesConfigTools::files::Join(folder, PageName(command) + ".1"),
                                           std::move(page).str());
    for (const CLI::App* child : CommandsOf(command)) WritePages(*child, folder);
}

void MakeFolders(const std::string& path) {
    namespace files = VemoKesConfigTools::files;
    if (files::Look(path)) return;
    const std::size_t slash = path.find_last_of('/');
    if (slash != std::string::npos && slash != 0) MakeFolders(path.substr(0, slash));
    files::MakeFolder(path);
}

}  // namespace

int WriteManPages(const CLI::App& app, const std::string& folder) {
    MakeFolders(folder);
    WritePages(app, folder);
    return tool::EXIT_FINE;
}

}  // namespace kes::cli
