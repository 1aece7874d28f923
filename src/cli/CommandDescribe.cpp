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
    std::string key;
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
        for (const auto& [name, value] : *details->Enums()) {
            list += (list.empty() ? "" : ", ") + Text(name) + "(" + std::to_string(value) + ")";
        }
        Line("one of", list, depth);
    }
    if (!details || !details->StructFields()) return;
    for (const auto& field : *details->StructFields()) FieldLines(*field, depth);
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
    if (key.TableIndexes()) {
        for (const auto& index : *key.TableIndexes()) {
            std::string text = Range(index->Min(), index->Max());
            for (const auto& [name, value] : index->Enums()) {
                text += ", " + Text(name) + "(" + std::to_string(value) + ")";
            }
            Line("index " + Text(index->Name()), text);
        }
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

int Run(const Globals& globals, const DescribeOptions& options) {
    Session session(globals);
    const std::shared_ptr<api::Chip> chip = session.FindChip(globals.chip);
    const std::optional<std::uint32_t> number = ToNumber(options.key);
    // An index behind the key, as texts have it, names the same record.
    const std::string name = options.key.substr(0, options.key.find('.'));
    metadb::MetadataDatabase database(globals.database);
    bool first = true;
    for (const auto& subsystem : SubsystemsNamed(session, *chip, options.subsystem)) {
        for (const auto& key : session.Keys(*chip, *subsystem)) {
            if (number ? static_cast<std::uint32_t>(key->Psid()) != *number : Text(key->Name()) != name)
                continue;
            session.Metadata().GetMetadataDetails(subsystem, key);
            if (!first) std::cout << '\n';
            first = false;
            Describe(*key, *chip, *subsystem,
                     database.Load(Text(chip->SystemVersionLabel()), Text(subsystem->Name())));
        }
    }
    if (!first) return EXIT_FINE;
    const std::string near = DidYouMean(name, session.KeyNames(*chip));
    throw Failure(EXIT_FINDINGS, Text(chip->SystemVersionLabel()) + " has no key \"" + options.key + "\"" +
                                     (near.empty() ? "" : ", " + near));
}

}  // namespace

void AddDescribe(CLI::App& app, Globals& globals) {
    CLI::App* command = app.add_subcommand("describe", "Tell all that the metadata knows of a key");
    const auto options = std::make_shared<DescribeOptions>();
    command->add_option("KEY", options->key, "Name or number (decimal, or 0x and hexadecimal) of the key")
        ->required();
    command->add_option("--subsystem", options->subsystem, "Only in this subsystem, by name or alias")
        ->type_name("NAME");
    AddDatabaseOptions(*command, globals, /*withChip=*/true);
    command->callback(
        [&globals, options] { globals.run = [&globals, options] { return Run(globals, *options); }; });
}

}  // namespace kes::cli
