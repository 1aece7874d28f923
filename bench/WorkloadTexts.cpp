// The workload in the formats that are compared. Each value has the form that is usual there.

#include "bench/Workload.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace KesBench {

namespace {

using Format = Workload::Format;
using Kind = Value::Kind;

std::string Hexadecimal(std::int64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(number));
    return text;
}

/// The octets with a separator in front of each but the first.
std::string OctetText(std::string_view octets) {
    std::string text;
    for (const char octet : octets) {
        char two[4];
        std::snprintf(two, sizeof two, "%02X", static_cast<unsigned>(static_cast<unsigned char>(octet)));
        text.append(text.empty() ? "" : " ").append(two);
    }
    return text;
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string List(const std::vector<std::int64_t>& items, const char* brackets) {
    std::string text(1, brackets[0]);
    for (const std::int64_t item : items)
        text.append(text.size() == 1 ? "" : ", ").append(std::to_string(item));
    return text + brackets[1];
}

std::string StructText(const Value& value, Format format) {
    const std::string low = std::to_string(value.fields[0]);
    const std::string high = std::to_string(value.fields[1]);
    const std::string flags = std::to_string(value.fields[2]);
    switch (format) {
        case Format::Kes:
            return "{" + low + ", " + high + ", " + List(value.items, "{}") + ", " + flags + "}";
        case Format::Json:
            return R"({"lowest": )" + low + R"(, "highest": )" + high + R"(, "steps": )" +
                   List(value.items, "[]") + R"(, "flags": )" + flags + "}";
        case Format::Toml:
            return "{ lowest = " + low + ", highest = " + high + ", steps = " + List(value.items, "[]") +
                   ", flags = " + flags + " }";
        case Format::Libconfig:
            return "{ lowest = " + low + "; highest = " + high + "; steps = " + List(value.items, "[]") +
                   "; flags = " + flags + "; }";
    }
    return {};
}

std::string ValueText(const Value& value, Format format) {
    const bool isKes = format == Format::Kes;
    switch (value.kind) {
        case Kind::Integer:
            // JSON knows no other than decimal numbers.
            return value.isHexadecimal && format != Format::Json ? Hexadecimal(value.number)
                                                                 : std::to_string(value.number);
        case Kind::Enumerator:
            return isKes ? value.text : Quoted(value.text);
        case Kind::Text:
            return Quoted(value.text);
        case Kind::Octets:
            return isKes ? "[ " + OctetText(value.text) + " ]" : Quoted(OctetText(value.text));
        case Kind::Array:
            return List(value.items, isKes ? "{}" : "[]");
        case Kind::Struct:
            return StructText(value, format);
    }
    return {};
}

struct Words {
    const char* file;
    std::string_view head, placeBegin, placeNamed, placeEnd, placeBetween, quote, equals, behind, between,
        tail;
};

Words WordsOf(Format format) {
    switch (format) {
        case Format::Kes:
            return {"bench.ktf", "version=bench\n", "\nfile=", "\n", "", "", "", " = ", "\n", "", ""};
        case Format::Toml:
            return {"bench.toml", "", "\n[", "]\n", "", "", "", " = ", "\n", "", ""};
        case Format::Json:
            return {"bench.json", "{\n", "\"", "\": {\n", "\n}", ",\n", "\"", ": ", "", ",\n", "\n}\n"};
        case Format::Libconfig:
            return {"bench.cfg", "", "", ": {\n", "};\n", "", "", " = ", ";\n", "", ""};
    }
    throw std::logic_error("no such format");
}

}  // namespace

std::string Workload::Text(Format format) const {
    const Words words = WordsOf(format);
    const std::string path = Path(words.file);
    std::ofstream file(path, std::ios::binary);
    file << words.head;
    for (std::size_t key = 0; key < mKeys; ++key) {
        const bool begins = key == 0 || PlaceOf(key) != PlaceOf(key - 1);
        if (begins) {
            if (key != 0) file << words.placeEnd << words.placeBetween;
            file << words.placeBegin << PlaceName(PlaceOf(key)) << words.placeNamed;
        }
        const Entry entry = At(key);
        if (!begins) file << words.between;
        if (key % 3 == 0 && format != Format::Json)
            file << "# " << entry.label << ", set by the board team\n";
        file << words.quote << entry.name << words.quote << words.equals << ValueText(entry.value, format)
             << words.behind;
    }
    file << words.placeEnd << words.tail;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
    return path;
}

}  // namespace KesBench
