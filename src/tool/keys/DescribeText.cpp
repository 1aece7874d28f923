#include "tool/keys/DescribeText.h"

#include "tool/keys/KeyText.h"
#include "tool/output/Printable.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace kes::tool {

namespace {

constexpr std::size_t LABEL_WIDTH = 14;

void Line(const std::string& label, const std::string& text, std::size_t depth = 1) {
    if (text.empty()) return;
    const std::string indent(depth * 2, ' ');
    std::string shown = Printable(label);
    shown.resize(std::max(LABEL_WIDTH, shown.size() + 1), ' ');
    // A text of several lines stays in its column.
    std::cout << indent << shown;
    for (const char c : PrintableLines(text)) {
        std::cout << c;
        if (c == '\n') std::cout << indent << std::string(shown.size(), ' ');
    }
    std::cout << '\n';
}

std::string Word(const Json& record, const char* field) { return record.value(field, std::string()); }

/// The list of this name, empty without one.
const Json& List(const Json& record, const char* field) {
    static const Json none = Json::array();
    const auto found = record.find(field);
    return found == record.end() ? none : *found;
}

std::string Range(const Json& record) {
    const std::string least = record.at("minimum").dump();
    const std::string most = record.at("maximum").dump();
    return least == most ? least : least + " to " + most;
}

std::string Choices(const Json& record) {
    std::string list;
    for (const Json& choice : List(record, "choices")) {
        list += (list.empty() ? "" : ", ") + Word(choice, "name") + "(" + choice.at("value").dump() + ")";
    }
    return list;
}

void ValueLines(const Json& record, std::size_t depth) {
    if (record.contains("length")) Line("length", Range(record["length"]) + " octets", depth);
    if (record.contains("minimum")) Line("range", Range(record), depth);
    Line("units", Word(record, "units"), depth);
    Line("format", Word(record, "format"), depth);
    Line("one of", Choices(record), depth);
    for (const Json& field : List(record, "fields")) {
        std::cout << std::string(depth * 2, ' ') << "field " << Printable(Word(field, "name")) << '\n';
        Line("type", TypeText(field), depth + 1);
        Line("bits", field.at("bits").dump() + " at " + field.at("bit_position").dump(), depth + 1);
        Line("label", Word(field, "label"), depth + 1);
        Line("description", Word(field, "description"), depth + 1);
        ValueLines(field, depth + 1);
    }
}

}  // namespace

void PrintDescription(const Json& record, const std::string& system) {
    const std::string label = Word(record, "label");
    const std::string alias = Word(record, "alias");
    const auto number = record.at("number").get<std::uint32_t>();
    std::string suffix;
    for (const Json& index : List(record, "indexes")) suffix += ".<" + Word(index, "name") + ">";
    std::cout << Printable(Word(record, "name") + suffix + (label.empty() ? "" : " - " + label)) << '\n';
    Line("subsystem",
         Word(record, "subsystem") + (alias.empty() ? "" : " (" + alias + ")") + " of " + system);
    Line("number", std::to_string(number) + " (" + KeyNumber(number) + ")");
    Line("type", TypeText(record));
    ValueLines(record, 1);
    for (const Json& index : List(record, "indexes")) {
        const std::string choices = Choices(index);
        Line("index " + Word(index, "name"), Range(index) + (choices.empty() ? "" : ", " + choices));
    }
    Line("default", Word(record, "default"));
    for (const auto& [indexes, value] : List(record, "defaults").items()) {
        Line("default ." + indexes, value.get<std::string>());
    }
    Line("access", Word(record, "access") + (record.contains("internal") ? ", internal" : ""));
    Line("description", Word(record, "description"));
    Line("internal note", Word(record, "internal_note"));
    Line("oid", Word(record, "oid"));
    Line("source", Word(record, "source"));
    Line("uid", record.at("uid").dump());
    Line("example", Word(record, "example"));
}

}  // namespace kes::tool
