#include "cli/Globals.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/DeviceWords.h"
#include "tool/keys/KeyList.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <utility>

namespace kes::cli {

namespace {

/// A store with what the configuration puts into it. Sizes are null where they are not known: a text has
/// none.
Json StoreRecord(const api::Store& store, api::FrameworkFacade& facade) {
    const auto size = [](auto bytes) {
        return bytes == static_cast<decltype(bytes)>(api::Store::INVALID_STORE_SIZE) ? Json() : Json(bytes);
    };
    Json record = {{"device", DeviceName(store.DeviceId())},
                   {"store", store.StoreId()},
                   {"size", size(store.StoreSize())},
                   {"free", size(store.StoreFreeSize())},
                   {"keys", 0},
                   {"subsystems", Json::array()}};
    std::uint32_t keys = 0;
    for (const auto& place : facade.GetPlaces()) {
        if (place->DeviceId() != store.DeviceId() || place->StoreId() != store.StoreId()) continue;
        keys += place->KeyCount();
        record["subsystems"].push_back(Text(api::Subsystem::NameOf(place->SubsystemType())));
    }
    record["keys"] = keys;
    return record;
}

void PrintTable(const Json& stores) {
    const bool sized =
        std::ranges::any_of(stores, [](const Json& store) { return !store["size"].is_null(); });
    Table table(sized ? std::vector<std::string>{"DEVICE", "STORE", "SIZE", "FREE", "KEYS", "SUBSYSTEMS"}
                      : std::vector<std::string>{"DEVICE", "STORE", "KEYS", "SUBSYSTEMS"});
    for (const Json& store : stores) {
        std::vector<std::string> row = {store["device"], store["store"].dump()};
        for (const char* field : {"size", "free"}) {
            if (sized) row.push_back(store[field].is_null() ? "-" : store[field].dump());
        }
        row.push_back(store["keys"].dump());
        std::string& subsystems = row.emplace_back();
        for (const Json& subsystem : store["subsystems"])
            subsystems += (subsystems.empty() ? "" : ", ") + subsystem.get<std::string>();
        table.Add(row);
    }
    table.Print(std::cout);
}

int Run(const Globals& globals, const std::string& name) {
    ConfigLoader loader(globals);
    const ConfigInput input = OpenConfig(globals, ConfigSource(name));
    if (const ExitCode loaded = loader.LoadWhatIsGood(input); loaded != EXIT_FINE) return loaded;
    Json document = JsonDocument("stores");
    document["file"] = input.Name();
    document["system"] = Text(loader.Chip()->SystemVersionLabel());
    Json& results = document["results"] = Json::array();
    for (const auto& store : loader.Facade().GetStores())
        results.push_back(StoreRecord(*store, loader.Facade()));
    if (globals.json) {
        PrintJson(document);
        return EXIT_FINE;
    }
    if (results.empty()) return EXIT_FINE;
    PrintTable(results);
    return EXIT_FINE;
}

}  // namespace

void AddStores(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("stores", "List the stores that a configuration fills");
    const auto file = std::make_shared<std::string>();
    command->add_option("CONFIG", *file, CONFIG_HELP)->required();
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddLockOption(*command, globals);
    AddJsonOption(*command, globals);
    command->footer(
        "Stores are those on otp, mtp, smem and eeprom, in this order, with what the configuration "
        "puts into each. Those of a device have a size and room that is free, in bytes.");
    command->callback([&globals, file] { globals.run = [&globals, file] { return Run(globals, *file); }; });
}

}  // namespace kes::cli
