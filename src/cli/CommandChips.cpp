#include "cli/Globals.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"
#include "tool/output/Table.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace kes::cli {

namespace {

Json ChipsDocument(const Session& session) {
    Json document = JsonDocument("chips");
    Json& results = document["results"] = Json::array();
    for (const auto& chip : session.Chips()) {
        results.push_back({{"label", Text(chip->SystemVersionLabel())},
                           {"chip", Text(chip->Name())},
                           {"id", chip->ChipId()},
                           {"rom", Text(chip->RomName())},
                           {"version", Text(chip->SystemVersion())},
                           {"description", Text(chip->SystemDescription())}});
    }
    return document;
}

int ListSubsystems(const Globals& globals) {
    Session session(globals);
    const std::shared_ptr<api::Chip> chip = session.FindChip(globals.chip);
    Json document = JsonDocument("subsystems");
    document["system"] = Text(chip->SystemVersionLabel());
    Json& results = document["results"] = Json::array();
    Table table({"NAME", "ALIAS", "KEYS", "VERSION", "DESCRIPTION"});
    for (const auto& subsystem : session.Subsystems(*chip)) {
        const std::size_t keys = session.Keys(*chip, *subsystem).size();
        results.push_back({{"subsystem", Text(subsystem->Name())},
                           {"alias", Text(subsystem->Alias())},
                           {"keys", keys},
                           {"version", Text(subsystem->Version())},
                           {"description", Text(subsystem->Description())}});
        table.Add({Text(subsystem->Name()), Text(subsystem->Alias()), std::to_string(keys),
                   Text(subsystem->Version()), Text(subsystem->Description())});
    }
    if (globals.json) {
        PrintJson(document);
    } else {
        table.Print(std::cout);
    }
    return EXIT_FINE;
}

}  // namespace

void AddChips(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("chips", "List the chips and firmware systems of the database");
    AddDatabaseOptions(*command, globals, /*withChip=*/false);
    AddJsonOption(*command, globals);
    command->callback([&globals] {
        globals.run = [&globals] {
            const Session session(globals);
            if (globals.json) {
                PrintJson(ChipsDocument(session));
                return EXIT_FINE;
            }
            Table table({"LABEL", "CHIP", "ID", "ROM", "VERSION", "DESCRIPTION"});
            for (const auto& chip : session.Chips()) {
                table.Add({Text(chip->SystemVersionLabel()), Text(chip->Name()),
                           std::to_string(chip->ChipId()), Text(chip->RomName()), Text(chip->SystemVersion()),
                           Text(chip->SystemDescription())});
            }
            table.Print(std::cout);
            return EXIT_FINE;
        };
    });
}

void AddSubsystems(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("subsystems", "List the subsystems of a chip");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddJsonOption(*command, globals);
    command->callback([&globals] { globals.run = [&globals] { return ListSubsystems(globals); }; });
}

}  // namespace kes::cli
