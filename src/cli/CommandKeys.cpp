#include "cli/Globals.h"
#include "cli/Help.h"
#include "tool/keys/KeyJson.h"
#include "tool/keys/KeyText.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/Json.h"
#include "tool/output/NearNames.h"
#include "tool/output/Table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>

namespace kes::cli {

namespace {

struct KeysOptions {
    std::string pattern;
    std::string subsystem;
};

bool Contains(const std::string& text, const std::string& part) {
    const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

bool Matches(const api::Metadata& key, const std::string& pattern) {
    return pattern.empty() || Contains(Text(key.Name()), pattern) || Contains(Text(key.Label()), pattern) ||
           Contains(Text(key.Description()), pattern);
}

int Run(const Globals& globals, const KeysOptions& options) {
    Session session(globals);
    const std::shared_ptr<api::Chip> chip = session.FindChip(globals.chip);
    Json document = JsonDocument("keys");
    document["system"] = Text(chip->SystemVersionLabel());
    Json& results = document["results"] = Json::array();
    Table table({"SUBSYSTEM", "NUMBER", "NAME", "TYPE", "LABEL"});
    for (const auto& subsystem : SubsystemsNamed(session, *chip, options.subsystem)) {
        for (const auto& key : session.Keys(*chip, *subsystem)) {
            if (!Matches(*key, options.pattern)) continue;
            session.Metadata().GetMetadataDetails(subsystem, key);
            results.push_back(KeyRecord(*subsystem, *key));
            table.Add({Text(subsystem->Name()), KeyNumber(*key), Text(key->Name()) + IndexSuffix(*key),
                       TypeText(results.back()), Text(key->Label())});
        }
    }
    if (globals.json) PrintJson(document);
    if (results.empty()) {
        const std::string near = DidYouMean(options.pattern, session.KeyNames(*chip));
        throw Failure(EXIT_FINDINGS, "no key of " + Text(chip->SystemVersionLabel()) + " matches \"" +
                                         options.pattern + "\"" + (near.empty() ? "" : ", " + near));
    }
    if (!globals.json) table.Print(std::cout);
    return EXIT_FINE;
}

}  // namespace

void AddKeys(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("keys", "List or search the keys of a chip");
    const auto options = std::make_shared<KeysOptions>();
    command->add_option("PATTERN", options->pattern,
                        "Part of a name, label or description, in upper or lower case; all keys without it");
    command->add_option("--subsystem", options->subsystem, "Only keys of this subsystem, by name or alias")
        ->type_name("NAME");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    AddJsonOption(*command, globals);
    AddExamples(*command,
                {{"kes keys --subsystem wlan antenna", "Those of a subsystem that have to do with antennas"},
                 {"kes keys --json | jq -r '.results[].name'", "The names of all keys"}});
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
