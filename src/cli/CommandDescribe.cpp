#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/KeyText.h"
#include "cli/NearNames.h"
#include "cli/Session.h"
#include "metadb/MetadataDatabase.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
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

constexpr std::size_t LABEL_WIDTH = 14;

void Line(const std::string& label, const std::string& text, std::size_t depth = 1) {
    if (text.empty()) return;
    const std::string indent(depth * 2, ' ');
    std::string shown = label;
    shown.resize(std::max(LABEL_WIDTH, label.size() + 1), ' ');
    // A text of several lines stays in its column.
    std::cout << indent << shown;
    for (const char c : text) {
        std::cout << c;
        if (c == '\n') std::cout << indent << std::string(shown.size(), ' ');
    }
    std::cout << '\n';
}

/// A key number in decimal or, behind "0x", in hexadecimal.
std::optional<std::uint32_t> ToNumber(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) text.remove_prefix(2);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::string AccessText(api::AccessRights access) {
    switch (access) {
        case api::AccessRights::NotAccessible:
            return "not accessible";
        case api::AccessRights::ReadOnly:
            return "read only";
        case api::AccessRights::ReadWrite:
            return "read and write";
        case api::AccessRights::WriteOnly:
            return "write only";
        case api::AccessRights::Unknown:
            break;
    }
    return "unknown";
}

std::string Range(std::int64_t min, std::int64_t max) {
    return min == max ? std::to_string(min) : std::to_string(min) + " to " + std::to_string(max);
}

void ValueLines(const api::Metadata& key, std::pair<std::int64_t, std::int64_t> range, std::size_t depth);

void FieldLines(const api::StructField& field, std::size_t depth) {
    const api::Metadata& record = *field.MetaData();
    std::cout << std::string(depth * 2, ' ') << "field " << Text(record.Name()) << '\n';
    Line("type", IsBitField(field) ? "bit field" : TypeText(record), depth + 1);
    Line("bits", std::to_string(field.ElemBitWidth()) + " at " + std::to_string(field.ElemLsbBitPos()),
         depth + 1);
    Line("label", Text(record.Label()), depth + 1);
    Line("description", Text(record.Description()), depth + 1);
    ValueLines(record, FieldRange(field), depth + 1);
}

/// Range or length, format, units, enumerators and fields: what keys and fields have in common.
void ValueLines(const api::Metadata& key, std::pair<std::int64_t, std::int64_t> range, std::size_t depth) {
    const std::shared_ptr<api::MetadataDetails>& details = key.Details();
    const bool simple = key.MetadataType() == api::MetadataTypes::Simple;
    const bool isString = key.SimpleType() == api::SimpleElementTypes::String;
    if (simple && isString) Line("length", Range(key.Min(), key.Max()) + " octets", depth);
    if (simple && !isString) Line("range", Range(range.first, range.second), depth);
    Line("units", Text(key.Units()), depth);
    if (simple && !isString) Line("format", Text(key.Format()), depth);
    if (details && details->Enums()) {
        std::string list;
        for (const auto& [name, value] : details->Enums()) {
            list += (list.empty() ? "" : ", ") + Text(name) + "(" + std::to_string(value) + ")";
        }
        Line("one of", list, depth);
    }
    if (!details) return;
    for (const auto& field : details->StructFields()) FieldLines(*field, depth);
}

void DefaultLines(const metadb::SubsystemData& subsystem, const std::string& name) {
    const auto key = std::ranges::find(subsystem.keys, name, &metadb::KeyData::name);
    if (key == subsystem.keys.end()) return;
    for (const metadb::DefaultValue& value : key->defaults) {
        Line(value.indexes.empty() ? "default" : "default ." + value.indexes, value.value);
    }
}

void Describe(const api::Metadata& key, const api::Chip& chip, const api::Subsystem& subsystem,
              const metadb::SubsystemData& stored) {
    const std::string label = Text(key.Label());
    std::cout << Text(key.Name()) << IndexSuffix(key) << (label.empty() ? "" : " - " + label) << '\n';
    const std::string alias = Text(subsystem.Alias());
    Line("subsystem", Text(subsystem.Name()) + (alias.empty() ? "" : " (" + alias + ")") + " of " +
                          Text(chip.SystemVersionLabel()));
    Line("number", std::to_string(static_cast<std::uint32_t>(key.Psid())) + " (" + KeyNumber(key) + ")");
    Line("type", TypeText(key));
    ValueLines(key, {key.Min(), key.Max()}, 1);
    for (const auto& index : key.TableIndexes()) {
        std::string text = Range(index->Min(), index->Max());
        for (const auto& [name, value] : index->Enums()) {
            text += ", " + Text(name) + "(" + std::to_string(value) + ")";
        }
        Line("index " + Text(index->Name()), text);
    }
    DefaultLines(stored, Text(key.Name()));
    Line("access", AccessText(key.AccessRight()) + (key.IsInternal() ? ", internal" : ""));
    Line("description", Text(key.Description()));
    Line("internal note", Text(key.DescriptionInternal()));
    Line("oid", Text(key.Oid()));
    Line("source", Text(key.SourceReference()));
    Line("uid", std::to_string(key.Uid()));
    Line("example", ExampleLine(key));
}

/// Describes every key of a name or number. The subsystems are loaded once for all of them.
class Describer {
public:
    Describer(const Globals& globals, const DescribeOptions& options)
        : mSession(globals), mDatabase(globals.database), mChip(mSession.FindChip(globals.chip)) {
        for (const auto& subsystem : SubsystemsNamed(mSession, *mChip, options.subsystem)) {
            mKnown.push_back({subsystem, mSession.Keys(*mChip, *subsystem),
                              mDatabase.Load(Text(mChip->SystemVersionLabel()), Text(subsystem->Name()))});
        }
    }

    int Run(const std::vector<std::string>& keys) {
        for (const std::string& key : keys) Run(key);
        return EXIT_FINE;
    }

private:
    struct Known {
        std::shared_ptr<api::Subsystem> subsystem;
        std::vector<std::shared_ptr<api::Metadata>> keys;
        metadb::SubsystemData stored;
    };

    void Run(const std::string& word) {
        const std::optional<std::uint32_t> number = ToNumber(word);
        // An index behind the key, as texts have it, names the same record.
        const std::string name = word.substr(0, word.find('.'));
        bool found = false;
        for (const Known& known : mKnown) {
            for (const auto& key : known.keys) {
                const bool same =
                    number ? static_cast<std::uint32_t>(key->Psid()) == *number : Text(key->Name()) == name;
                if (!same) continue;
                found = true;
                mSession.Metadata().GetMetadataDetails(known.subsystem, key);
                if (!std::exchange(mFirst, false)) std::cout << '\n';
                Describe(*key, *mChip, *known.subsystem, known.stored);
            }
        }
        if (found) return;
        const std::string near = DidYouMean(name, mSession.KeyNames(*mChip));
        throw Failure(EXIT_FINDINGS, Text(mChip->SystemVersionLabel()) + " has no key \"" + word + "\"" +
                                         (near.empty() ? "" : ", " + near));
    }

    Session mSession;
    metadb::MetadataDatabase mDatabase;
    std::shared_ptr<api::Chip> mChip;
    std::vector<Known> mKnown;
    bool mFirst = true;
};

}  // namespace

void AddDescribe(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("describe", "Tell all that the metadata knows of keys");
    const auto options = std::make_shared<DescribeOptions>();
    command->add_option("KEY", options->keys, "Names or numbers (decimal, or 0x and hexadecimal) of keys")
        ->required();
    command->add_option("--subsystem", options->subsystem, "Only in this subsystem, by name or alias")
        ->type_name("NAME");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    command->callback([&globals, options] {
        globals.run = [&globals, options] { return Describer(globals, *options).Run(options->keys); };
    });
}

}  // namespace kes::cli
