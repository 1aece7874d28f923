// A command line that is being typed cannot be parsed: words are missing, and the one at the cursor is half
// there. So this walks the words itself, with the names, values and positionals of the definitions that the
// parser uses.

#include "cli/Complete.h"

#include "cli/Help.h"
#include "tool/config/ConfigInput.h"
#include "tool/keys/DeviceWords.h"
#include "tool/keys/KeyText.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <utility>

namespace kes::cli {

namespace {

enum class Source { NOTHING, FILES, FOLDERS, CONFIGS, KEYS, CHIPS, SUBSYSTEMS, DEVICES, COMMANDS };

/// What completes a value, by the name of its option or positional, or else by the name of its type. Files
/// complete what is not here.
constexpr struct {
    const char* word;
    Source source;
} SOURCES[] = {{"CHIP", Source::CHIPS},     {"SUBSYSTEM", Source::SUBSYSTEMS}, {"DEVICE", Source::DEVICES},
               {"KEY", Source::KEYS},       {"COMMAND", Source::COMMANDS},     {"DIR", Source::FOLDERS},
               {"CONFIG", Source::CONFIGS}, {"FROM", Source::CONFIGS},         {"TO", Source::CONFIGS},
               {"IMAGE", Source::CONFIGS},  {"PATTERN", Source::NOTHING},      {"VALUE", Source::NOTHING},
               {"TEXT", Source::NOTHING},   {"INT", Source::NOTHING},          {"UINT", Source::NOTHING}};

/// "subsystem" and "KEY=VALUE" as the table has them.
std::string TableWord(const std::string& name) {
    std::string word;
    for (const char c : name) {
        if (std::isalpha(static_cast<unsigned char>(c)) == 0) break;
        word += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return word;
}

Source SourceOf(const CLI::Option& option) {
    const std::string own = option.get_positional() ? option.get_name(true) : option.get_single_name();
    for (const std::string& name : {TableWord(own), TableWord(option.get_type_name())}) {
        const auto* found = std::ranges::find_if(SOURCES, [&](const auto& row) { return name == row.word; });
        // Every positional is a text to the parser, which says nothing.
        if (found != std::end(SOURCES) && !(option.get_positional() && name == "TEXT")) return found->source;
    }
    return Source::FILES;
}

/// A path as the shell will give it to the command.
std::string ExpandHome(const std::string& path) {
    const char* home = std::getenv("HOME");
    return path.starts_with("~/") && home != nullptr ? home + path.substr(1) : path;
}

/// What the words in front of the cursor say.
class Line {
public:
    explicit Line(const CLI::App& app) : mCommand(&app) {}

    void Take(const std::string& word) {
        if (mWaiting != nullptr) {
            Keep(*std::exchange(mWaiting, nullptr), word);
        } else if (word == "--" && !mOptionsEnded) {
            mOptionsEnded = true;
        } else if (IsOption(word)) {
            word.starts_with("--") ? TakeLong(word) : TakeShort(word);
        } else if (const CLI::App* command = FindCommand(*mCommand, word); command && mPositionals.empty()) {
            mCommand = command;
        } else {
            if (const CLI::Option* positional = NextPositional()) Keep(*positional, word);
            mPositionals.push_back(word);
        }
    }

    const CLI::App& Command() const { return *mCommand; }
    /// The option whose value stands at the cursor, null when anything may stand there.
    const CLI::Option* Waiting() const { return mWaiting; }
    const std::vector<std::string>& Positionals() const { return mPositionals; }
    bool IsOption(const std::string& word) const {
        return !mOptionsEnded && word.size() > 1 && word[0] == '-';
    }
    bool OptionsEnded() const { return mOptionsEnded; }

    /// The first value of an option or positional of this name, or else `otherwise`.
    std::string Value(const std::string& name, const std::string& otherwise = {}) const {
        const auto found = mValues.find(name);
        return found == mValues.end() ? otherwise : found->second;
    }

    const CLI::Option* FindOption(const std::string& name) const {
        for (const CLI::App* app = mCommand; app != nullptr; app = app->get_parent()) {
            if (const CLI::Option* option = app->get_option_no_throw(name)) return option;
        }
        return nullptr;
    }

    /// The positional that the next word is for, null when the command takes no more.
    const CLI::Option* NextPositional() const {
        auto place = static_cast<int>(mPositionals.size());
        for (const CLI::Option* option :
             mCommand->get_options([](const CLI::Option* o) { return o->get_positional(); })) {
            if (place < option->get_items_expected_max()) return option;
            place -= option->get_items_expected_max();
        }
        return nullptr;
    }

private:
    void Keep(const CLI::Option& option, const std::string& value) {
        mValues.emplace(option.get_positional() ? option.get_name(true) : option.get_single_name(), value);
    }

    void TakeLong(const std::string& word) {
        const std::size_t equals = word.find('=');
        const CLI::Option* option = FindOption(word.substr(0, equals));
        if (option == nullptr || !TakesValue(*option)) return;
        if (equals == std::string::npos) {
            mWaiting = option;
        } else {
            Keep(*option, word.substr(equals + 1));
        }
    }

    void TakeShort(const std::string& word) {
        for (std::size_t i = 1; i < word.size(); ++i) {
            const CLI::Option* option = FindOption(std::string("-") + word[i]);
            if (option == nullptr || !TakesValue(*option)) continue;
            if (i + 1 == word.size()) {
                mWaiting = option;
            } else {
                Keep(*option, word.substr(i + 1));
            }
            return;
        }
    }

    const CLI::App* mCommand;
    const CLI::Option* mWaiting = nullptr;
    bool mOptionsEnded = false;
    std::vector<std::string> mPositionals;
    std::map<std::string, std::string> mValues;
};

/// Prints the candidates that begin as the word at the cursor does.
class Completer {
public:
    Completer(const CLI::App& app, Globals globals, const std::vector<std::string>& words)
        : mApp(app), mGlobals(std::move(globals)), mLine(app) {
        for (std::size_t i = 0; i + 1 < words.size(); ++i) mLine.Take(words[i]);
        if (!words.empty()) mWord = words.back();
        mGlobals.database = ExpandHome(mLine.Value("db", mGlobals.database));
        mGlobals.plugins = ExpandHome(mLine.Value("plugins", mGlobals.plugins));
        mGlobals.chip = mLine.Value("chip", mGlobals.chip);
    }

    void Run() {
        if (mLine.Waiting() != nullptr) return Values(*mLine.Waiting());
        if (mWord.starts_with('-') && !mLine.OptionsEnded()) {
            const std::size_t equals = mWord.find('=');
            if (equals == std::string::npos) return Options();
            const CLI::Option* option = mLine.FindOption(mWord.substr(0, equals));
            if (option == nullptr || !TakesValue(*option)) return;
            mHead = mWord.substr(0, equals + 1);
            return Values(*option);
        }
        if (!CommandsOf(mLine.Command()).empty()) {
            // Nothing is known of what stands behind an unknown command.
            if (mLine.Positionals().empty()) Commands(mLine.Command());
            return;
        }
        if (const CLI::Option* positional = mLine.NextPositional()) return Values(*positional);
        if (!mLine.OptionsEnded()) Options();
    }

private:
    void Offer(const std::string& text, const std::string& meaning) {
        const std::string candidate = mHead + text;
        if (!candidate.starts_with(mWord)) return;
        // In a menu there is room for the beginning only.
        std::string line = meaning.substr(0, std::min(meaning.find('\n'), meaning.find(" (")));
        std::ranges::replace(line, '\t', ' ');
        std::cout << candidate << '\t' << Printable(line) << '\n';
    }

    void Commands(const CLI::App& command) {
        for (const CLI::App* child : CommandsOf(command)) Offer(child->get_name(), child->get_description());
    }

    void Options() {
        for (const CLI::App* app = &mLine.Command(); app != nullptr; app = app->get_parent()) {
            for (const CLI::Option* option : app->get_options()) {
                const bool ofParent = app != &mLine.Command() &&
                                      (option == app->get_help_ptr() || option == app->get_version_ptr());
                if (ofParent || option->get_group().empty() || !option->nonpositional()) continue;
                const std::vector<std::string>& names = option->get_lnames();
                Offer(names.empty() ? "-" + option->get_snames().front() : "--" + names.front(),
                      option->get_description());
            }
        }
    }

    void Values(const CLI::Option& option) {
        const std::vector<std::string> choices = ChoicesOf(option);
        for (const std::string& choice : choices) Offer(choice, "");
        if (!choices.empty()) return;
        switch (SourceOf(option)) {
            case Source::NOTHING:
                return;
            case Source::FILES:
                std::cout << ":files\n";
                return;
            case Source::FOLDERS:
                std::cout << ":folders\n";
                return;
            case Source::CONFIGS:
                return Configs();
            case Source::DEVICES:
                for (const auto& [name, number] : DEVICE_NAMES) Offer(std::string(name), "");
                return;
            case Source::COMMANDS:
                return HelpTopics();
            case Source::CHIPS:
                return Chips();
            case Source::SUBSYSTEMS:
                return Subsystems();
            case Source::KEYS:
                return Keys();
        }
    }

    /// A prefix that is being typed, unless it is a file; files and folders for anything else.
    void Configs() {
        for (const ConfigPrefix& prefix : CONFIG_PREFIXES) {
            if (mWord.starts_with(prefix.word)) break;
            if (mWord.empty() || !prefix.word.starts_with(mWord) || IsFileBegun()) continue;
            return Offer(std::string(prefix.word), prefix.meaning);
        }
        std::cout << (mWord.starts_with("chunks:") ? ":folders\n" : ":files\n");
    }

    bool IsFileBegun() const {
        std::error_code failed;
        const std::filesystem::directory_iterator folder(".", failed);
        return std::any_of(begin(folder), end(folder), [&](const auto& entry) {
            return entry.path().filename().string().starts_with(mWord);
        });
    }

    void HelpTopics() {
        const CLI::App* command = &mApp;
        for (const std::string& word : mLine.Positionals()) {
            command = FindCommand(*command, word);
            if (command == nullptr) return;
        }
        Commands(*command);
    }

    void Chips() {
        const Session session(mGlobals);
        for (const auto& chip : session.Chips()) {
            Offer(Text(chip->SystemVersionLabel()), Text(chip->SystemDescription()));
        }
    }

    void Subsystems() {
        Session session(mGlobals);
        for (const auto& subsystem : session.Subsystems(*Chip(session))) {
            const std::string alias = Text(subsystem->Alias());
            Offer(Text(subsystem->Name()), Text(subsystem->Description()));
            if (!alias.empty()) Offer(alias, "the same as " + Text(subsystem->Name()));
        }
    }

    void Keys() {
        Session session(mGlobals);
        const std::shared_ptr<api::Chip> chip = Chip(session);
        std::map<std::string, std::string> labels;
        for (const auto& subsystem : SubsystemsNamed(session, *chip, mLine.Value("subsystem"))) {
            for (const auto& key : session.Keys(*chip, *subsystem))
                labels.emplace(Text(key->Name()), Text(key->Label()));
        }
        for (const auto& [name, label] : labels) Offer(name, label);
    }

    /// As the commands choose it: the option, or what the configuration itself names, or the first.
    std::shared_ptr<api::Chip> Chip(const Session& session) const {
        const ConfigSource source(ExpandHome(mLine.Value("CONFIG", "-")));
        if (!mGlobals.chip.empty() || (source.IsText() && !std::filesystem::is_regular_file(source.target))) {
            return session.FindChip(mGlobals.chip);
        }
        const std::shared_ptr<api::Chip> named =
            session.TryChip(ConfigInput(source, InputAccess::PEEK, mGlobals.lockWait).System());
        return named ? named : session.FindChip({});
    }

    const CLI::App& mApp;
    Globals mGlobals;
    Line mLine;
    std::string mWord;
    std::string mHead;  ///< "--option=" in front of a value
};

}  // namespace

int Complete(const CLI::App& app, Globals globals, const std::vector<std::string>& words) {
    try {
        Completer(app, std::move(globals), words).Run();
    } catch (const std::exception&) {
        // A message in the middle of a line that somebody types helps nobody; the command itself will tell.
    }
    return EXIT_FINE;
}

}  // namespace kes::cli
