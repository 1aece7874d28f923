#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyList.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Table.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <utility>

namespace kes::cli {

namespace {

struct ListOptions {
    std::string file;
    PlaceOptions place;
    bool changed = false;
};

std::vector<std::string> PlaceCells(const api::KeyValue& key) {
    const Json place = PlaceRecord(key.SubsystemType(), key.DeviceId(), key.StoreId());
    return {place["subsystem"], place["device"], std::to_string(key.StoreId())};
}

/// A configuration that was loaded for a list of its keys.
struct Listed {
    Listed(const Globals& globals, const std::string& name, const PlaceOptions& place)
        : loader(globals),
          input(OpenConfig(globals, ConfigSource(name))),
          result(loader.LoadWhatIsGood(input)) {
        if (result != EXIT_FINE) return;
        const PlaceFilter filter(loader.Library(), *loader.Chip(), place);
        loader.LoadDefaults(filter.Subsystems());
        values = ValuesIn(loader.Facade(), filter);
    }
    Json Document(const char* command) const {
        Json document = JsonDocument(command);
        document["file"] = input.Name();
        document["system"] = Text(loader.Chip()->SystemVersionLabel());
        document["results"] = Json::array();
        return document;
    }

    mutable ConfigLoader loader;
    ConfigInput input;
    ExitCode result;
    std::vector<std::shared_ptr<api::KeyValue>> values;
};

/// Prints the values as records, or as a table of places and the other columns, whose cells `rest` gives.
template <typename Rest>
int Print(const Globals& globals, const Listed& listed, const char* command,
          const std::vector<std::string>& columns, Rest rest) {
    if (globals.json) {
        Json document = listed.Document(command);
        for (const auto& key : listed.values) document["results"].push_back(ValueRecord(*key));
        PrintJson(document);
        return EXIT_FINE;
    }
    if (listed.values.empty()) return EXIT_FINE;
    std::vector<std::string> heads = {"SUBSYSTEM", "DEVICE", "STORE"};
    heads.insert(heads.end(), columns.begin(), columns.end());
    Table table(heads);
    for (const auto& key : listed.values) {
        std::vector<std::string> row = PlaceCells(*key);
        for (std::string& cell : rest(*key)) row.push_back(std::move(cell));
        table.Add(row);
    }
    table.Print(std::cout);
    return EXIT_FINE;
}

// What is longest stands last.
int RunList(const Globals& globals, const ListOptions& options) {
    using Cells = std::vector<std::string>;
    Listed listed(globals, options.file, options.place);
    if (listed.result != EXIT_FINE) return listed.result;
    if (!options.changed) {
        return Print(globals, listed, "list", {"STATE", "KEY", "VALUE"}, [](const api::KeyValue& key) {
            return Cells{StateOf(key), KeyText(key), key.ValueBytes()};
        });
    }
    std::erase_if(listed.values, [](const auto& key) { return key->IsDefault(); });
    return Print(globals, listed, "list", {"KEY", "DEFAULT", "VALUE"}, [](const api::KeyValue& key) {
        return Cells{KeyText(key), key.DefaultBytes().value_or("-"), key.ValueBytes()};
    });
}

/// The keys that the metadata does not know.
int RunRaw(const Globals& globals, const ListOptions& options) {
    Listed listed(globals, options.file, options.place);
    if (listed.result != EXIT_FINE) return listed.result;
    std::map<api::SubsystemTypes, api::HostMapRef<std::int32_t, std::shared_ptr<api::Metadata>>> records;
    std::erase_if(listed.values, [&](const auto& key) {
        const auto [entry, isNew] = records.try_emplace(key->SubsystemType());
        if (isNew) {
            const auto subsystem = std::make_shared<api::Subsystem>(
                api::Subsystem::NameOf(key->SubsystemType()), "", "", "", "", "", "");
            entry->second = listed.loader.Facade().GetPopulatedRawmodeMetadata(subsystem);
        }
        const std::shared_ptr<api::Metadata>* record = entry->second->Find(key->Psid());
        return record == nullptr || (*record)->MetadataType() != api::MetadataTypes::Unknown;
    });
    return Print(globals, listed, "raw", {"KEY", "VALUE"}, [](const api::KeyValue& key) {
        return std::vector<std::string>{KeyText(key), key.ValueBytes()};
    });
}

/// The options of a command that lists a configuration.
std::shared_ptr<ListOptions> AddListOptions(CLI::App& command, Globals& globals) {
    auto options = std::make_shared<ListOptions>();
    command.add_option("CONFIG", options->file, CONFIG_HELP)->required();
    AddPlaceOptions(command, options->place);
    AddDatabaseOptions(command, globals, /*withChip=*/true);
    AddLockOption(command, globals);
    AddJsonOption(command, globals);
    return options;
}

}  // namespace

void AddList(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("list", "List the keys of a configuration with values and states");
    const auto options = AddListOptions(*command, globals);
    command->add_flag("--changed", options->changed,
                      "Only keys whose value is not their default, those without a default among them");
    AddExamples(*command, {{"kes list board.ktf", "All keys"},
                           {"kes list board.ktf --changed --subsystem bt", "What bt has of its own"}});
    command->footer(
        "The state is default, changed, or no_default for a key that has none. Lines of a text with "
        "errors are left out, with a warning for each.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return RunList(globals, *options); }; });
}

void AddRaw(CLI::App& app, Globals& globals) {
    CLI::App* command =
        app.add_subcommand("raw", "List the keys of a configuration that the metadata does not know");
    const auto options = AddListOptions(*command, globals);
    command->footer(
        "Such keys have a number and a raw value. Lines of a text with errors are left out, with a warning.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return RunRaw(globals, *options); }; });
}

}  // namespace kes::cli
