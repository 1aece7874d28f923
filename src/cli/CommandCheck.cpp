#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Help.h"
#include "cli/TextLoader.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>

namespace kes::cli {

namespace {

struct CheckOptions {
    std::vector<std::string> files;
    bool verbose = false;
};

std::string DeviceName(std::int32_t device) {
    switch (device) {
        case api::DEVICE_TYPE_ROM:
            return "rom";
        case api::DEVICE_TYPE_OTP:
            return "otp";
        case api::DEVICE_TYPE_SMEM:
            return "smem";
        case api::DEVICE_TYPE_MTP:
            return "mtp";
        case api::DEVICE_TYPE_CUR_CFG:
            return "cur_cfg";
        case api::DEVICE_TYPE_FW_CFG:
            return "fw_cfg";
        case api::DEVICE_TYPE_EEPROM:
            return "eeprom";
        default:
            return std::to_string(device);
    }
}

void Summarize(TextLoader& loader, const TextFile& file) {
    std::map<std::string, std::uint32_t> keys;
    const api::Chip& chip = *loader.Chip();
    std::cout << file.Name() << ": system " << Text(chip.SystemVersionLabel()) << ", chip "
              << Text(chip.Name()) << " (id " << chip.ChipId() << ")\n  places\n";
    for (const auto& place : loader.Facade().GetPlaces()) {
        const std::string subsystem = Text(api::Subsystem::NameOf(place->SubsystemType()));
        keys[subsystem] += place->KeyCount();
        std::cout << "    " << subsystem << ' ' << DeviceName(place->DeviceId()) << ' ' << place->StoreId()
                  << ": " << place->KeyCount() << (place->KeyCount() == 1 ? " key\n" : " keys\n");
    }
    std::cout << "  keys per subsystem\n";
    for (const auto& [subsystem, count] : keys) std::cout << "    " << subsystem << ": " << count << '\n';
    std::cout << "  stores\n";
    for (const auto& store : loader.Facade().GetStores()) {
        std::cout << "    " << DeviceName(store->DeviceId()) << ' ' << store->StoreId() << '\n';
    }
}

int Run(const Globals& globals, const CheckOptions& options) {
    TextLoader loader(globals);
    int worst = EXIT_FINE;
    for (const std::string& name : options.files) {
        try {
            const TextFile file(name);
            worst = std::max<int>(worst, loader.Load(file));
            if (options.verbose) Summarize(loader, file);
        } catch (const Failure& failure) {
            loader.Messages().Report(name, "error", failure.what());
            worst = std::max<int>(worst, failure.Code());
        }
    }
    return worst;
}

}  // namespace

void AddCheck(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("check", "Check configuration texts against the metadata");
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("FILE", options->files, "Texts to check; \"-\" for standard input")->required();
    command->add_flag("-v,--verbose", options->verbose, "Also say what was found: places, keys and stores");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    command->get_option("--chip")->description(
        "Firmware system, by its version label (environment: KES_CHIP; without both: the one that the "
        "\"version\" "
        "line of the text names, or else the first of the database)");
    AddExamples(*command, {{"kes check board.ktf", "No output and exit code 0 when the text is good"},
                           {"kes check -v *.ktf", "Several texts, and what was found in them"}});
    command->footer(
        "Each error is one line on standard error: FILE:LINE:COLUMN: error: TEXT\n"
        "Exit code: 0 all texts are good, 1 errors were found, 2 wrong usage, 3 a file, database or "
        "plug-in failed.");
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
