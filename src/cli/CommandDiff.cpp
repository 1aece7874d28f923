#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyList.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <tuple>

namespace kes::cli {

namespace {

struct DiffOptions {
    std::vector<std::string> files;
    PlaceOptions place;
    bool defaults = false;
};

using Values = std::vector<std::shared_ptr<api::KeyValue>>;

/// One key that differs; null where a side does not have it.
struct Difference {
    std::shared_ptr<api::KeyValue> key;  ///< for its place and name
    std::optional<std::string> before;
    std::optional<std::string> after;

    const char* Kind() const {
        if (!before) return "added";
        return after ? "changed" : "removed";
    }
};

auto Identity(const api::KeyValue& key) {
    return std::make_tuple(key.SubsystemType(), key.DeviceId(), key.StoreId(), key.Psid(), key.Indexes());
}

/// In the order of the first list, then what only the second has.
std::vector<Difference> Compare(const Values& first, const Values& second) {
    std::map<decltype(Identity(*first.front())), std::shared_ptr<api::KeyValue>> others;
    for (const auto& key : second) others.insert_or_assign(Identity(*key), key);
    std::vector<Difference> differences;
    for (const auto& key : first) {
        const auto other = others.find(Identity(*key));
        if (other == others.end()) {
            differences.push_back({key, key->ValueBytes(), std::nullopt});
            continue;
        }
        if (key->ValueBytes() != other->second->ValueBytes()) {
            differences.push_back({key, key->ValueBytes(), other->second->ValueBytes()});
        }
        others.erase(other);
    }
    for (const auto& key : second) {
        if (others.contains(Identity(*key))) differences.push_back({key, std::nullopt, key->ValueBytes()});
    }
    return differences;
}

std::vector<Difference> CompareWithDefaults(const Values& values) {
    std::vector<Difference> differences;
    for (const auto& key : values) {
        if (key->IsDefault()) continue;
        differences.push_back({key, key->DefaultBytes(), key->ValueBytes()});
    }
    return differences;
}

Json ToRecord(const Difference& difference) {
    Json record = PlacedKeyRecord(*difference.key);
    record["change"] = difference.Kind();
    AddBytes(record, "before", difference.before);
    AddBytes(record, "after", difference.after);
    return record;
}

void Print(const Difference& difference) {
    std::string line = PlaceText(*difference.key) + ": " + KeyText(*difference.key) + " = ";
    if (!difference.before) {
        line.insert(0, "+ ").append(*difference.after);
    } else if (!difference.after) {
        line.insert(0, "- ").append(*difference.before);
    } else {
        line.insert(0, "~ ").append(*difference.before).append(" -> ").append(*difference.after);
    }
    std::cout << Printable(line) << '\n';
}

int Run(const Globals& globals, const DiffOptions& options) {
    if (options.files.size() != (options.defaults ? 1U : 2U)) {
        throw Failure(EXIT_USAGE, options.defaults
                                      ? "--defaults takes one configuration"
                                      : "two configurations are compared, or one with --defaults");
    }
    if (!options.defaults && ConfigSource(options.files.front()).IsStandardInput() &&
        ConfigSource(options.files.back()).IsStandardInput()) {
        throw Failure(EXIT_USAGE, "standard input can be given once");
    }
    ConfigLoader loader(globals);
    std::vector<Values> values;
    Json document = JsonDocument("diff");
    document["files"] = options.files;
    Json& systems = document["systems"] = Json::array();
    for (const std::string& name : options.files) {
        const ConfigInput input = OpenConfig(globals, ConfigSource(name));
        if (const ExitCode loaded = loader.LoadWhatIsGood(input); loaded != EXIT_FINE) return loaded;
        systems.push_back(Text(loader.Chip()->SystemVersionLabel()));
        const PlaceFilter filter(loader.Library(), *loader.Chip(), options.place);
        if (options.defaults) loader.LoadDefaults(filter.Subsystems());
        values.push_back(ValuesIn(loader.Facade(), filter));
    }
    const std::vector<Difference> differences =
        options.defaults ? CompareWithDefaults(values.front()) : Compare(values.front(), values.back());
    Json& results = document["results"] = Json::array();
    for (const Difference& difference : differences) {
        if (globals.json) {
            results.push_back(ToRecord(difference));
        } else {
            Print(difference);
        }
    }
    if (globals.json) PrintJson(document);
    return differences.empty() ? EXIT_FINE : EXIT_FINDINGS;
}

}  // namespace

void AddDiff(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("diff", "Compare two configurations key by key");
    const auto options = std::make_shared<DiffOptions>();
    command->add_option("CONFIG", options->files, CONFIG_HELP)->required();
    command->add_flag("--defaults", options->defaults,
                      "Compare one configuration with the default values of its keys");
    AddPlaceOptions(*command, options->place);
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddLockOption(*command, globals);
    AddJsonOption(*command, globals);
    AddExamples(*command, {{"kes diff old.ktf new.ktf", "What is another key or value in new.ktf"},
                           {"kes diff board.ktf eeprom:board.img", "What is different on a device"},
                           {"kes diff --defaults board.ktf", "What is not at its default"}});
    command->footer(
        "Keys are compared by place, number and indexes, and by value, whatever their order, layout and "
        "comments. A line begins with \"~\" for another value, \"-\" for a key of the first only, \"+\" "
        "for one of the second only. Lines of a text with errors are left out, with a warning for each.\n"
        "Exit code: 0 nothing differs, 1 something does.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
