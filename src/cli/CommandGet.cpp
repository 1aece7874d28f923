#include "cli/Globals.h"
#include "cli/Help.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyList.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Printable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace {

struct GetOptions {
    std::string file;
    std::vector<std::string> keys;
    PlaceOptions place;
};

class Getter {
public:
    Getter(const Globals& globals, const GetOptions& options)
        : mGlobals(globals),
          mOptions(options),
          mLoader(globals),
          mInput(OpenConfig(globals, ConfigSource(options.file))) {}

    int Run() {
        if (const ExitCode loaded = mLoader.LoadWhatIsGood(mInput); loaded != EXIT_FINE) return loaded;
        const PlaceFilter filter(mLoader.Library(), *mLoader.Chip(), mOptions.place);
        mLoader.LoadDefaults(filter.Subsystems());
        Json document = JsonDocument("get");
        document["file"] = mInput.Name();
        document["system"] = Text(mLoader.Chip()->SystemVersionLabel());
        Json& results = document["results"] = Json::array();
        bool missing = false;
        bool empty = false;
        for (const std::string& key : mOptions.keys) {
            const Json& record = results.emplace_back(Get(filter, key));
            missing = missing || record["state"] == "missing";
            empty = empty || record["state"] == "empty";
            if (!mGlobals.json) Print(record);
        }
        if (mGlobals.json) PrintJson(document);
        if (missing) return EXIT_FINDINGS;
        return empty ? EXIT_EMPTY : EXIT_FINE;
    }

private:
    Json Get(const PlaceFilter& filter, const std::string& key) {
        const KeyAddress address(key);
        const auto candidates = FindCandidates(mLoader.Library(), *mLoader.Chip(), filter, address);
        const auto values = FindValues(mLoader.Facade(), candidates, filter, address);
        if (values.size() > 1) FailNotUnique(address, values);
        if (values.size() == 1) {
            Json record = ValueRecord(*values.front());
            if (IsEmptyValue(*values.front())) record["state"] = "empty";
            return record;
        }
        Json record = {{"key", address.text}, {"value", Json()}, {"default", DefaultOf(candidates, address)}};
        const std::uint32_t line = LineWithoutValue(candidates, filter, address);
        record["state"] = line == 0 ? "missing" : "empty";
        if (line != 0) record["line"] = line;
        return record;
    }

    void Print(const Json& record) const {
        const std::string key = record["key"];
        if (record["value"].is_null()) {
            std::string text = key + " is not there";
            if (record.contains("line")) {
                text = "line " + record["line"].dump() + " leaves " + key + " without a value";
            }
            if (record["default"].is_string())
                text += "; its default is " + record["default"].get<std::string>();
            mLoader.Messages().Report(mInput.Name(), record.contains("line") ? "note" : "error", text);
            return;
        }
        if (mOptions.keys.size() > 1) std::cout << key << " = ";
        std::cout << ForOutput(record["value"].get<std::string>()) << '\n';
    }

    Json DefaultOf(const std::vector<KeyCandidate>& candidates, const KeyAddress& address) {
        for (const auto& value : mLoader.Facade().GetDefaultValues()) {
            const bool asked = std::ranges::any_of(candidates, [&](const KeyCandidate& candidate) {
                return value->SubsystemType() == candidate.subsystem->Type() &&
                       value->Psid() == candidate.psid && value->Indexes() == address.indexes;
            });
            if (asked) return value->ValueBytes();
        }
        return {};
    }

    /// The number of the last line that has the key without a value, 0 when there is none.
    std::uint32_t LineWithoutValue(const std::vector<KeyCandidate>& candidates, const PlaceFilter& filter,
                                   const KeyAddress& address) {
        using VemoKesConfigTools::TextLine;
        if (mInput.Text() == nullptr) return 0;
        const VemoKesConfigTools::CTextIndex index(mInput.Text()->Content(), mGlobals.database,
                                                   Text(mLoader.Chip()->SystemVersionLabel()));
        std::uint32_t number = 0;
        for (const TextLine& line : index.Lines()) {
            if (line.effect != TextLine::Effect::Removes) continue;
            const auto type = static_cast<api::SubsystemTypes>(line.place.subsystem);
            const bool asked = std::ranges::any_of(candidates, [&](const KeyCandidate& candidate) {
                return type == candidate.subsystem->Type() &&
                       static_cast<std::int32_t>(line.psid) == candidate.psid;
            });
            if (!asked || !filter.Takes(type, line.place.device, line.place.store)) continue;
            if (!std::ranges::equal(line.indices, address.indexes)) continue;
            number = line.number;
        }
        return number;
    }

    const Globals& mGlobals;
    const GetOptions& mOptions;
    mutable ConfigLoader mLoader;
    ConfigInput mInput;
};

}  // namespace

void AddGet(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("get", "Print the value of a key in a configuration");
    const auto options = std::make_shared<GetOptions>();
    command->add_option("CONFIG", options->file, CONFIG_HELP)->required();
    command
        ->add_option("KEY", options->keys, "Names or numbers of keys, with \".\" and a number for each index")
        ->required();
    AddPlaceOptions(*command, options->place);
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddLockOption(*command, globals);
    AddJsonOption(*command, globals);
    AddExamples(*command, {{"kes get board.ktf max_acl_links", "Print a value"},
                           {"kes get eeprom:board.img max_acl_links", "Print it as a device has it"},
                           {"kes get board.ktf tx_power_limit.0.1 --subsystem wlan", "An entry of a table"}});
    command->footer(
        "One key prints its value alone, several print KEY = VALUE. Lines with errors are left out, with a "
        "warning for each.\n"
        "Exit code: 0 the key has a value, also when that equals its default; 1 the key is missing; 4 it is "
        "there but empty (\"\", [ ], or nothing behind \"=\"). Of several keys a missing one counts most.");
    command->callback([&globals, options] {
        globals.run = [&globals, options] { return Getter(globals, *options).Run(); };
    });
}

}  // namespace kes::cli
