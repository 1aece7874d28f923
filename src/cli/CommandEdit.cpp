// The commands set, add and unset.

#include "cli/Globals.h"
#include "cli/Help.h"
#include "files/FileLock.h"
#include "files/Files.h"
#include "tool/config/ConfigWriter.h"
#include "tool/config/OutputFile.h"
#include "tool/config/TextEditor.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"
#include "tool/output/UnifiedDiff.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace files = VemoKesConfigTools::files;

namespace {

struct EditOptions {
    std::string file;
    std::vector<std::string> words;
    PlaceOptions place;
    std::string output;
    bool dryRun = false;
    bool create = false;
    OutputOptions replace;
};

constexpr const char* BLANKS = " \t";

void CheckValue(const std::string& key, const std::string& value) {
    if (value.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) {
        throw Failure(EXIT_USAGE, "the value of " + key + " must be one line");
    }
    if (value.ends_with('\\')) {
        throw Failure(EXIT_USAGE,
                      "the value of " + key + " must be one line; a backslash at its end joins the next");
    }
    if (value.find_first_not_of(BLANKS) == std::string::npos) {
        throw Failure(EXIT_USAGE, "the value of " + key +
                                      " is empty: \"kes unset\" takes a key out; the empty text is '\"\"'");
    }
}

[[noreturn]] void FailOnBlanks(const std::string& word, const std::string& next) {
    throw Failure(EXIT_USAGE, "write KEY VALUE, KEY=VALUE or KEY = VALUE, not " + word + " " + next);
}

/// KEY VALUE, KEY=VALUE and KEY = VALUE, any number of them in a row.
std::vector<Assignment> ParseAssignments(const std::vector<std::string>& words) {
    std::vector<Assignment> assignments;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t equals = words[i].find('=');
        std::string key = words[i].substr(0, equals);
        std::string value;
        if (equals != std::string::npos) {
            value = words[i].substr(equals + 1);
            if (value.empty() && i + 1 < words.size()) FailOnBlanks(words[i], words[i + 1]);
        } else {
            if (i + 1 < words.size() && words[i + 1] == "=") ++i;
            if (++i == words.size()) throw Failure(EXIT_USAGE, "no value is given for " + key);
            value = words[i];
            if (value.starts_with('=')) FailOnBlanks(key, value);
        }
        value.erase(0, value.find_first_not_of(BLANKS));
        CheckValue(key, value);
        assignments.push_back({KeyAddress(key), value});
    }
    return assignments;
}

std::vector<Assignment> ParseKeys(const std::vector<std::string>& words) {
    std::vector<Assignment> keys;
    keys.reserve(words.size());
    for (const std::string& word : words) keys.push_back({KeyAddress(word), {}});
    return keys;
}

/// Whether the text itself is written, so that it is to be locked.
bool ChangesItself(const EditOptions& options, const ConfigSource& text) {
    return !options.dryRun && options.output.empty() && !text.IsStandardInput();
}

ConfigInput OpenOrBegin(const Globals& globals, const EditOptions& options, const ConfigSource& text,
                        EditKind kind) {
    const InputAccess access = ChangesItself(options, text) ? InputAccess::CHANGE : InputAccess::READ;
    if (text.IsStandardInput() || kind == EditKind::Unset || files::Look(text.target))
        return OpenConfig(globals, text, access);
    if (!options.create) {
        throw Failure(EXIT_SYSTEM, text.target + ": there is no such file; --create begins a new text");
    }
    files::FileLock lock;
    if (access == InputAccess::CHANGE) {
        lock = files::FileLock(text.target, files::LockMode::EXCLUSIVE, globals.lockWait);
        // Somebody else may have begun it meanwhile.
        if (files::Look(text.target)) return OpenConfig(globals, text, access);
    }
    const Session session(globals);
    const std::string label = Text(session.FindChip(globals.chip)->SystemVersionLabel());
    if (globals.chip.empty() && session.Chips().size() > 1) {
        Diagnostics(globals.noColor)
            .Report(text.target, "note",
                    "begun as a text of " + label +
                        ", the first of the database; choose another system with --chip");
    }
    return {text, "version = " + label + "\n", std::move(lock)};
}

int EditText(const Globals& globals, const EditOptions& options, const ConfigSource& text, EditKind kind,
             const std::vector<Assignment>& assignments) {
    const ConfigInput input = OpenOrBegin(globals, options, text, kind);
    const bool isNew = input.Text()->IsNew();
    TextEditor editor(globals, input, options.place);
    const std::optional<std::string> edited = editor.Edit(kind, assignments);
    if (!edited || !editor.Proves(*edited)) return editor.Result();

    const std::string target = options.output.empty() ? text.target : options.output;
    const std::string& before = input.Text()->Content();
    if (options.dryRun) {
        std::cout << ForOutput(
            UnifiedDiff(input.Name(), input.Name() + " (changed)", isNew ? std::string() : before, *edited));
        return EXIT_FINE;
    }
    if (IsStandardOutput(target)) {
        std::cout << *edited;
        return EXIT_FINE;
    }
    const bool isInput = options.output.empty() && !isNew;
    if (isInput && *edited == before) return EXIT_FINE;
    const OutputFile output(globals, target, ConfigTextKind(globals, editor.Loader()), options.replace);
    output.Write(*edited, isInput ? &input.Text()->File() : nullptr);
    return EXIT_FINE;
}

/// Changes a folder of chunk files or a device, which is read and written whole.
int EditWhole(const Globals& globals, const EditOptions& options, const ConfigSource& source, EditKind kind,
              const std::vector<Assignment>& assignments) {
    if (!options.output.empty())
        throw Failure(EXIT_USAGE, "-o is for texts; \"kes convert\" makes a copy of " + source.word);
    if (options.create) {
        throw Failure(EXIT_USAGE,
                      "--create begins texts; \"kes convert\" makes chunk files of one, and \"kes device "
                      "create\" a device");
    }
    const ConfigInput input =
        OpenConfig(globals, source, options.dryRun ? InputAccess::READ : InputAccess::CHANGE);
    ConfigLoader loader(globals);
    if (const ExitCode loaded = loader.LoadWhatIsGood(input); loaded != EXIT_FINE) return loaded;
    ConfigWriter writer(globals, loader);
    const std::string before = writer.AsText();
    ConfigEditor editor(globals, loader, input.Name());
    if (!editor.Apply(kind, editor.FindTargets(kind, options.place, assignments), assignments))
        return EXIT_FINDINGS;
    const std::string after = writer.AsText();
    if (options.dryRun) {
        std::cout << ForOutput(UnifiedDiff(input.Name(), input.Name() + " (changed)", before, after));
        return EXIT_FINE;
    }
    return before == after ? EXIT_FINE : writer.Save(source, {});
}

int Run(const Globals& globals, const EditOptions& options, EditKind kind) {
    const std::vector<Assignment> assignments =
        kind == EditKind::Unset ? ParseKeys(options.words) : ParseAssignments(options.words);
    const ConfigSource source(options.file);
    return (source.IsText() ? EditText : EditWhole)(globals, options, source, kind, assignments);
}

CLI::App* AddEditCommand(CLI::App& app, Globals& globals, EditKind kind, const char* name,
                         const char* description, const char* words) {
    CLI::App* command = app.add_subcommand(name, description);
    const auto options = std::make_shared<EditOptions>();
    command
        ->add_option("CONFIG", options->file,
                     std::string(CONFIG_HELP) + ". Of \"-\" the result goes to standard output")
        ->required();
    command->add_option("KEY", options->words, words)->required();
    AddPlaceOptions(*command, options->place);
    command->add_flag("-n,--dry-run", options->dryRun, "Write nothing; show what would change as a diff");
    command
        ->add_option("-o,--output", options->output,
                     "Of a text: write the result there; \"-\" for standard output")
        ->type_name("FILE");
    AddForceOption(*command, options->replace);
    AddLockOption(*command, globals);
    if (kind != EditKind::Unset) {
        command->add_flag("--create", options->create, "Begin a new text, for --chip, when there is none");
    }
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    command->callback([&globals, options, kind] {
        globals.run = [&globals, options, kind] { return Run(globals, *options, kind); };
    });
    return command;
}

constexpr const char* PROOF =
    "Nothing else in a text changes, and all changes of one call are made or none. The result is read back "
    "and compared before it takes the place of the text in one step. Errors elsewhere in the text do not "
    "matter, as long as none comes with the change. A folder of chunk files or a device is read, changed, "
    "written, and read back.\n";

constexpr const char* PAIRS =
    "Names or numbers of keys, each with its value: KEY VALUE or KEY=VALUE. A value is what a text has "
    "behind \"=\"; single quotes keep blanks, quotes, braces and brackets from the shell";

}  // namespace

void AddSet(CLI::App& app, Globals& globals) {
    CLI::App* command =
        AddEditCommand(app, globals, EditKind::Set, "set", "Set keys in a configuration", PAIRS);
    AddExamples(*command,
                {{"kes set board.ktf max_acl_links 3", "Set one key"},
                 {"kes set board.ktf local_name='\"Kitchen\"' tx_power_limit.0.1=68", "Set several, or none"},
                 {"kes set board.ktf channels_2g4 '{1, 6, 11}'", "Set an array"},
                 {"kes set board.ktf pa_type EXTERNAL_SINGLE -n", "See what would change"},
                 {"kes set eeprom:board.img max_acl_links 3", "Set it on a device"},
                 {"kes set new.ktf --create --device smem --store 1 max_acl_links 3", "Begin a text"}});
    command->footer(
        std::string("A key that is there gets the new value; one that is not is added behind the last "
                    "key of its place, and a new place at the end of the text.\n") +
        PROOF +
        "Exit code: 0 done, 1 the value is refused or the key is unknown, 2 wrong usage, the place is not "
        "clear among others, 3 the system failed.");
}

void AddAdd(CLI::App& app, Globals& globals) {
    CLI::App* command = AddEditCommand(app, globals, EditKind::Add, "add",
                                       "Add keys to a configuration that are not there yet", PAIRS);
    AddExamples(*command, {{"kes add board.ktf pin_code '\"0000\"'", "Add a key, never replace one"}});
    command->footer(
        std::string(PROOF) +
        "Exit code: 0 done, 1 the key is there already, is unknown, or the value is refused, 2 wrong "
        "usage, 3 the system failed.");
}

void AddUnset(CLI::App& app, Globals& globals) {
    CLI::App* command =
        AddEditCommand(app, globals, EditKind::Unset, "unset", "Take keys out of a configuration",
                       "Names or numbers of keys, with \".\" and a number for each index");
    AddExamples(*command, {{"kes unset board.ktf pin_code", "Take a key out"}});
    command->footer(std::string("Every line that gives the key a value goes, with the comment behind it.\n") +
                    PROOF + "Exit code: 0 done, 1 the key is not there, 2 wrong usage, 3 the system failed.");
}

}  // namespace kes::cli
