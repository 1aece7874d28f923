#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyList.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace {

struct DefaultsOptions {
    std::vector<std::string> keys;
    std::string subsystem;
};

/// Whether one of the keys that were asked for is this one, with these indexes or with any.
bool IsAskedFor(const api::KeyValue& key, const KeyAddress& address) {
    const bool same = address.number ? static_cast<std::uint32_t>(key.Psid()) == *address.number
                                     : Text(key.Name()) == address.name;
    return same && (address.indexes.empty() || address.indexes == key.Indexes());
}

int Run(const Globals& globals, const DefaultsOptions& options) {
    ConfigLoader loader(globals);
    Session& session = loader.Library();
    const std::shared_ptr<api::Chip> chip = session.FindChip(globals.chip);
    const PlaceFilter filter(session, *chip, {options.subsystem, {}, {}});
    loader.Facade().OwningChip(chip);
    loader.LoadDefaults(filter.Subsystems());
    std::vector<std::shared_ptr<api::KeyValue>> values;
    const auto all = loader.Facade().GetDefaultValues();
    if (options.keys.empty()) values.assign(all.begin(), all.end());
    for (const std::string& key : options.keys) {
        const KeyAddress address(key);
        FindCandidates(session, *chip, filter, address);
        const std::size_t before = values.size();
        std::copy_if(all.begin(), all.end(), std::back_inserter(values),
                     [&](const auto& value) { return IsAskedFor(*value, address); });
        if (values.size() == before) throw Failure(EXIT_FINDINGS, key + " has no default");
    }
    if (globals.json) {
        Json document = JsonDocument("defaults");
        document["system"] = Text(chip->SystemVersionLabel());
        Json& results = document["results"] = Json::array();
        for (const auto& value : values) {
            Json record = ValueRecord(*value);
            for (const char* field : {"device", "store", "default", "state"}) record.erase(field);
            results.push_back(std::move(record));
        }
        PrintJson(document);
        return EXIT_FINE;
    }
    if (values.empty()) return EXIT_FINE;
    Table table({"SUBSYSTEM", "KEY", "VALUE"});
    for (const auto& value : values) {
        table.Add(
            {Text(api::Subsystem::NameOf(value->SubsystemType())), KeyText(*value), value->ValueBytes()});
    }
    table.Print(std::cout);
    return EXIT_FINE;
}

}  // namespace

void AddDefaults(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("defaults", "List the default values of a chip's keys");
    const auto options = std::make_shared<DefaultsOptions>();
    command->add_option("KEY", options->keys, "Names or numbers of keys; all keys without it");
    command->add_option("--subsystem", options->subsystem, "Only keys of this subsystem, by name or alias")
        ->type_name("NAME");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddJsonOption(*command, globals);
    AddExamples(*command, {{"kes defaults --subsystem bt", "All defaults of a subsystem"},
                           {"kes defaults max_acl_links", "The default of one key"}});
    command->footer("Exit code: 1 when a key that was asked for has no default.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
