#include "cli/Diagnostics.h"
#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Listener.h"
#include "cli/NearNames.h"
#include "cli/Session.h"
#include "cli/TextFile.h"
#include "facade/FrameworkFacade.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

namespace kes::cli {

namespace {

using VemoKesConfigTools::TextFinding;

// Kinds of findings for which a near name helps.
constexpr std::int32_t UNKNOWN_NAME = 26;
constexpr std::int32_t NO_KEY_NUMBER = 21;

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

class Checker {
public:
    Checker(const Globals& globals, const CheckOptions& options)
        : mGlobals(globals),
          mOptions(options),
          mSession(globals),
          mFacade(globals.database),
          mDiagnostics(globals.noColor) {
        if (!globals.chip.empty()) mSession.FindChip(globals.chip);
    }

    int Run() {
        int worst = EXIT_FINE;
        for (const std::string& file : mOptions.files) worst = std::max(worst, Check(file));
        return worst;
    }

private:
    int Check(const std::string& name) {
        std::optional<TextFile> file;
        try {
            file.emplace(name);
        } catch (const Failure& failure) {
            mDiagnostics.Report(name, "error", failure.what());
            return failure.Code();
        }
        const bool chosen = !mGlobals.chip.empty();
        std::shared_ptr<api::Chip> chip = chosen ? nullptr : mSession.TryChip(file->Version());
        const bool guessed = !chosen && !chip;
        if (!chip) chip = mSession.FindChip(mGlobals.chip);

        const Listener listener;
        mFacade.OwningChip(chip);
        const bool good = mFacade.LoadText(file->Path(), /*merge=*/false);
        const int result = good ? EXIT_FINE : ReportFindings(*file, *chip, listener);
        for (const std::string& status : listener.Statuses()) {
            if (listener.Findings().empty()) mDiagnostics.Report(file->Name(), "warning", status);
        }
        if (guessed && result == EXIT_FINDINGS && !file->IsEmpty()) {
            mDiagnostics.Report(file->Name(), "note",
                                "checked as a text of " + Text(chip->SystemVersionLabel()) +
                                    ", the first of the database; choose another system with --chip");
        }
        if (mOptions.verbose) Summarize(*file, *chip);
        return result;
    }

    int ReportFindings(const TextFile& file, const api::Chip& chip, const Listener& listener) {
        for (const TextFinding& finding : listener.Findings()) {
            if (finding.line == 0) {
                mDiagnostics.Report(file.Name(), "error", finding.Message());
                continue;
            }
            mDiagnostics.Report(file.Name(), finding.line, finding.column, "error", finding.Message());
            mDiagnostics.ShowSource(file.Path(), finding.line, finding.column);
            if (finding.code != UNKNOWN_NAME && finding.code != NO_KEY_NUMBER) continue;
            if (const std::string near = DidYouMean(finding.key, KeyNames(chip)); !near.empty()) {
                mDiagnostics.Report(file.Name(), finding.line, finding.column, "note", near);
            }
        }
        const std::vector<Listener::Error> others = listener.OtherErrors();
        for (const auto& [number, text] : others) mDiagnostics.Report(file.Name(), "error", text);
        return others.empty() || file.IsEmpty() ? EXIT_FINDINGS : EXIT_SYSTEM;
    }

    /// Asked for once per chip, and only when there is something to look for.
    const std::vector<std::string>& KeyNames(const api::Chip& chip) {
        const std::string label = Text(chip.SystemVersionLabel());
        const auto found = mKeyNames.find(label);
        if (found != mKeyNames.end()) return found->second;
        return mKeyNames.emplace(label, mSession.KeyNames(chip)).first->second;
    }

    void Summarize(const TextFile& file, const api::Chip& chip) {
        std::map<std::string, std::uint32_t> keys;
        std::cout << file.Name() << ": system " << Text(chip.SystemVersionLabel()) << ", chip "
                  << Text(chip.Name()) << " (id " << chip.ChipId() << ")\n  places\n";
        for (const auto& place : mFacade.GetPlaces()) {
            const std::string subsystem = Text(api::Subsystem::NameOf(place->SubsystemType()));
            keys[subsystem] += place->KeyCount();
            std::cout << "    " << subsystem << ' ' << DeviceName(place->DeviceId()) << ' '
                      << place->StoreId() << ": " << place->KeyCount()
                      << (place->KeyCount() == 1 ? " key\n" : " keys\n");
        }
        std::cout << "  keys per subsystem\n";
        for (const auto& [subsystem, count] : keys) std::cout << "    " << subsystem << ": " << count << '\n';
        std::cout << "  stores\n";
        for (const auto& store : mFacade.GetStores()) {
            std::cout << "    " << DeviceName(store->DeviceId()) << ' ' << store->StoreId() << '\n';
        }
    }

    const Globals& mGlobals;
    const CheckOptions& mOptions;
    Session mSession;
    api::FrameworkFacade mFacade;
    Diagnostics mDiagnostics;
    std::map<std::string, std::vector<std::string>> mKeyNames;
};

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
    command->footer(
        "Each error is one line on standard error: FILE:LINE:COLUMN: error: TEXT\n"
        "Exit code: 0 all texts are good, 1 errors were found, 2 wrong usage, 3 a file, database or "
        "plug-in failed.");
    command->callback([&globals, options] {
        globals.run = [&globals, options] { return Checker(globals, *options).Run(); };
    });
}

}  // namespace kes::cli
