#include "cli/Globals.h"
#include "cli/Help.h"
#include "metadb/MetadataDatabase.h"
#include "tool/keys/DescribeText.h"
#include "tool/keys/KeyAddress.h"
#include "tool/keys/KeyJson.h"
#include "tool/keys/KeyText.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"
#include "tool/output/NearNames.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace kes::cli {

namespace {

namespace metadb = VemoKesConfigTools::metadb;

struct DescribeOptions {
    std::vector<std::string> keys;
    std::string subsystem;
};

/// Looks up every key of a name or number. The subsystems are loaded once for all of them.
class Describer {
public:
    Describer(const Globals& globals, const DescribeOptions& options)
        : mSession(globals), mDatabase(globals.database), mChip(mSession.FindChip(globals.chip)) {
        for (const auto& subsystem : SubsystemsNamed(mSession, *mChip, options.subsystem)) {
            mKnown.push_back({subsystem, mSession.Keys(*mChip, *subsystem),
                              mDatabase.Load(System(), Text(subsystem->Name()))});
        }
    }

    std::string System() const { return Text(mChip->SystemVersionLabel()); }

    /// The records of the keys of this name or number, by subsystem.
    std::vector<Json> Find(const std::string& word) {
        const std::optional<std::uint32_t> number = ParseKeyNumber(word);
        const std::string name = NameOf(word);
        std::vector<Json> records;
        for (const Known& known : mKnown) {
            for (const auto& key : known.keys) {
                const bool same =
                    number ? static_cast<std::uint32_t>(key->Psid()) == *number : Text(key->Name()) == name;
                if (!same) continue;
                mSession.Metadata().GetMetadataDetails(known.subsystem, key);
                records.push_back(FullKeyRecord(*known.subsystem, *key, known.stored));
            }
        }
        return records;
    }

    std::string NotFound(const std::string& word) {
        const std::string near = DidYouMean(NameOf(word), mSession.KeyNames(*mChip));
        return System() + " has no key \"" + word + "\"" + (near.empty() ? "" : ", " + near);
    }

private:
    struct Known {
        std::shared_ptr<api::Subsystem> subsystem;
        std::vector<std::shared_ptr<api::Metadata>> keys;
        metadb::SubsystemData stored;
    };

    /// An index behind the key, as texts have it, names the same record.
    static std::string NameOf(const std::string& word) { return word.substr(0, word.find('.')); }

    Session mSession;
    metadb::MetadataDatabase mDatabase;
    std::shared_ptr<api::Chip> mChip;
    std::vector<Known> mKnown;
};

int Run(const Globals& globals, const DescribeOptions& options) {
    Describer describer(globals, options);
    Json document = JsonDocument("describe");
    document["system"] = describer.System();
    Json& results = document["results"] = Json::array();
    std::string missing;
    for (const std::string& key : options.keys) {
        std::vector<Json> records = describer.Find(key);
        if (records.empty()) missing += (missing.empty() ? "" : "\nkes: ") + describer.NotFound(key);
        for (Json& record : records) {
            if (!globals.json) {
                if (!results.empty()) std::cout << '\n';
                PrintDescription(record, describer.System());
            }
            results.push_back(std::move(record));
        }
    }
    if (globals.json) PrintJson(document);
    if (!missing.empty()) throw Failure(EXIT_FINDINGS, missing);
    return EXIT_FINE;
}

}  // namespace

void AddDescribe(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("describe", "Tell all that the metadata knows of keys");
    const auto options = std::make_shared<DescribeOptions>();
    command->add_option("KEY", options->keys, "Names or numbers (decimal, or 0x and hexadecimal) of keys")
        ->required();
    command->add_option("--subsystem", options->subsystem, "Only in this subsystem, by name or alias")
        ->type_name("NAME");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddJsonOption(*command, globals);
    AddExamples(*command, {{"kes describe tx_power_limit", "By name"}, {"kes describe 0x201B", "By number"}});
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
