#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Session.h"
#include "cli/Table.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace kes::cli {

void AddChips(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("chips", "List the chips and firmware systems of the database");
    AddDatabaseOptions(*command, globals, /*withChip=*/false);
    command->callback([&globals] {
        globals.run = [&globals] {
            const Session session(globals);
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
    command->callback([&globals] {
        globals.run = [&globals] {
            Session session(globals);
            const std::shared_ptr<api::Chip> chip = session.FindChip(globals.chip);
            Table table({"NAME", "ALIAS", "KEYS", "VERSION", "DESCRIPTION"});
            for (const auto& subsystem : session.Subsystems(*chip)) {
                table.Add({Text(subsystem->Name()), Text(subsystem->Alias()),
                           std::to_string(session.Keys(*chip, *subsystem).size()), Text(subsystem->Version()),
                           Text(subsystem->Description())});
            }
            table.Print(std::cout);
            return EXIT_FINE;
        };
    });
}

}  // namespace kes::cli
