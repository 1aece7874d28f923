#include "bench/GrowthTexts.h"

#include "metadb/MetadataDatabase.h"

#include <cstdint>
#include <fstream>
#include <limits>
#include <string_view>
#include <utility>

namespace KesBench {

namespace {

namespace metadb = VemoKesConfigTools::metadb;

constexpr std::int64_t UNBOUNDED = std::numeric_limits<std::int32_t>::max();

std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (; count != 0; --count) text.append(piece);
    return text;
}

/// A line at a place, with a value between these.
std::string Line(std::string_view begin, std::string_view piece, std::size_t count, std::string_view end) {
    return "file = app\n" + std::string(begin) + Repeated(piece, count) + std::string(end) + "\n";
}

/// Lines at a place.
std::string Lines(std::string_view line, std::size_t count) {
    return "file = app\nk0 = 1\n" + Repeated(line, count);
}

template <typename Make>
std::string Numbered(std::size_t count, Make make) {
    std::string text = "file = app\n";
    for (std::size_t i = 0; i < count; ++i) text.append(make(i));
    return text;
}

std::string Keys(std::size_t n) {
    return Numbered(n, [](std::size_t i) { return "k" + std::to_string(i % GROWTH_KEYS) + " = 7\n"; });
}

std::string Places(std::size_t n) {
    return Numbered(n, [](std::size_t i) {
        return "subsystem = app\ndevice = smem\nstore = " + std::to_string(i) + "\nk0 = 1\n";
    });
}

std::string TableKeys(std::size_t n) {
    return Numbered(n, [](std::size_t i) { return "table." + std::to_string(i) + " = 7\n"; });
}

std::string UnknownNumbers(std::size_t n) {
    return Numbered(n, [](std::size_t i) { return std::to_string(500000 + i) + " = %1 2%\n"; });
}

constexpr GrowthText TEXTS[] = {
    {"keys", 5000, Keys},
    {"keys of a table", 5000, TableKeys},
    {"keys that nobody knows", 5000, UnknownNumbers},
    {"keys with a prefix", 5000,
     [](std::size_t n) {
         return Numbered(n,
                         [](std::size_t i) { return "app2.k" + std::to_string(i % GROWTH_KEYS) + " = 7\n"; });
     }},
    {"one key again and again", 10000, [](std::size_t n) { return Lines("k1 = 7\n", n); }},
    {"one key set and removed", 10000, [](std::size_t n) { return Lines("k1 = 7\nk1 =\n", n); }},
    {"places", 4000, Places, false},
    {"places again and again", 10000,
     [](std::size_t n) { return Lines("file=app2\nk1=7\nfile=app1\nk1=7\n", n); }},
    {"array of numbers", 50000, [](std::size_t n) { return Line("numbers = {1", ", 23", n, "}"); }},
    {"array of enumerators", 50000, [](std::size_t n) { return Line("modes = {on", ", off", n, "}"); }},
    {"array of texts", 50000, [](std::size_t n) { return Line("texts = {\"\"", ", \"a # /* b\"", n, "}"); }},
    {"array of texts with escapes", 20000,
     [](std::size_t n) { return Line("texts = {\"\"", ", \"a\\\"#\\u00e9\"", n, "}"); }},
    {"array of octets", 50000, [](std::size_t n) { return Line("blobs = {[01]", ", [02 ff]", n, "}"); }},
    {"array of MAC addresses", 20000,
     [](std::size_t n) { return Line("macs = {[01 02 03 04 05 06]", ", [01 02 03 04 05 06]", n, "}"); }},
    {"array of MAC addresses with colons", 20000,
     [](std::size_t n) { return Line("macs = {1:2:3:4:5:6", " , 01:02:03:04:05:06", n, " }"); }, false},
    {"array of structs", 5000,
     [](std::size_t n) { return Line("structs = {{1, {1, {2}}}", ", {3, {4, {5, 6}}}", n, "}"); }},
    {"array in a struct", 50000, [](std::size_t n) { return Line("nested = {3, {4, {5", ", 6", n, "}}}"); }},
    {"array over continued lines", 20000,
     [](std::size_t n) { return Line("numbers = {1", ", \\\n 23", n, "}"); }},
    {"array of texts over continued lines", 20000,
     [](std::size_t n) { return Line("texts = {\"\"", ", \\\n \"ab\"", n, "}"); }},
    {"array with block comments", 20000,
     [](std::size_t n) { return Line("numbers = {1", ", /* x */ 23", n, "}"); }},
    {"array with block comments over lines", 20000,
     [](std::size_t n) { return Line("numbers = {1", ", /*\n\n*/ 23", n, "}"); }},
    {"long number", 100000, [](std::size_t n) { return Line("k0 = ", "0", n, "1"); }},
    {"long text", 500000, [](std::size_t n) { return Line("text = \"", "x", n, "\""); }},
    {"long text with escapes", 50000,
     [](std::size_t n) { return Line("text = \"", "a\\n\\u00e9", n, "\""); }},
    {"long text of comment signs", 50000, [](std::size_t n) { return Line("text = \"", "a#/*/", n, "\""); }},
    {"long text over continued lines", 20000,
     [](std::size_t n) { return Line("text = \"", "ab\\\n", n, "\""); }},
    {"long octets", 100000, [](std::size_t n) { return Line("blob = [", " a1", n, "]"); }},
    {"raw numbers", 20000, [](std::size_t n) { return Line("numbers = %", " 23", n, "%"); }},
    {"raw octets", 20000, [](std::size_t n) { return Line("blobs = %", " [01 02]", n, "%"); }},
    {"blank lines", 100000, [](std::size_t n) { return Lines(" \n", n); }},
    {"line ends of two bytes", 20000, [](std::size_t n) { return Lines("k1 = 7\r\n", n); }},
    {"line comments", 50000, [](std::size_t n) { return Lines("# a comment\n", n); }},
    {"line comments with backslashes", 20000, [](std::size_t n) { return Lines("# a \\ comment\n", n); }},
    {"line comments after keys", 20000, [](std::size_t n) { return Lines("k1 = 7 # a /* comment\n", n); }},
    {"long line comment", 500000, [](std::size_t n) { return Line("k0 = 1 # ", "x", n, ""); }},
    {"long line comment of comment signs", 50000,
     [](std::size_t n) { return Line("k0 = 1 # ", "#/* ", n, ""); }},
    {"block comments", 50000, [](std::size_t n) { return Lines("/* a\n comment */\n", n); }},
    {"block comments in a line", 20000, [](std::size_t n) { return Line("k0 = 1 ", "/* a */ ", n, ""); }},
    {"block comments side by side", 20000, [](std::size_t n) { return Line("k0 = 1 ", "/**/", n, " "); },
     false},
    {"block comments in front of a key", 20000,
     [](std::size_t n) { return Line("", "/* a */ ", n, "k0 = 1"); }},
    {"block comments inside keys", 20000,
     [](std::size_t n) { return Lines("k1/* a */=/* b */7/* c */\n", n); }},
    {"long block comment", 500000, [](std::size_t n) { return Line("k0 = 1 /* ", "x", n, "*/"); }},
    {"long block comment of stars", 50000,
     [](std::size_t n) { return Line("k0 = 1 /* ", "* / /* ", n, "*/"); }},
    {"long block comment of other signs", 20000,
     [](std::size_t n) { return Line("k0 = 1 /* ", "# \\ \\\n", n, "\n*/"); }},
    {"block comment without an end", 50000,
     [](std::size_t n) { return Line("k0 = 1 /* ", "k1 = 2\n", n, ""); }},
    {"continued lines", 50000, [](std::size_t n) { return Line("k0 = ", "\\\n", n, "1"); }},
    {"continued lines of blanks", 50000, [](std::size_t n) { return Line("k0 = ", " \\\n ", n, "1"); }},
    {"continued lines in front of a key", 50000,
     [](std::size_t n) { return Line("", " \\\n", n, "k0 = 1"); }},
    {"continued lines after keys", 20000, [](std::size_t n) { return Lines("k1 = 7 \\\n\n", n); }},
    {"blanks", 500000, [](std::size_t n) { return Line("k0 = ", " ", n, "1"); }},
    {"unknown names", 10000, [](std::size_t n) { return Lines("nobody = 1\n", n); }, false},
    {"values out of range", 10000, [](std::size_t n) { return Lines("k1 = 9999\n", n); }, false},
    {"unknown devices", 10000, [](std::size_t n) { return Lines("device = x\n", n); }, false},
    {"texts without an end", 10000, [](std::size_t n) { return Lines("text = \"abc\n", n); }, false},
    {"texts without an end, with a comment sign", 10000,
     [](std::size_t n) { return Lines("text = \"a /* b\n", n); }, false},
    {"arrays without an end", 10000, [](std::size_t n) { return Lines("numbers = {1, 2\n", n); }, false},
    {"long array with a wrong end", 50000,
     [](std::size_t n) { return Line("numbers = {1", ", 23", n, "; k0 = 1"); }, false},
    {"long array of texts with a wrong end", 20000,
     [](std::size_t n) { return Line("texts = {\"\"", ", \"ab\"", n, "; k0 = 1"); }, false},
    {"comment signs that are none", 20000, [](std::size_t n) { return Line("k0 = 1 ", "/ \\ ", n, ""); },
     false},
    {"slashes in bad lines", 10000, [](std::size_t n) { return Lines("k1 = 7 / * /\n", n); }, false},
    {"backslashes in bad lines", 10000, [](std::size_t n) { return Lines("k1 = 7 \\ \\ \\\\\n", n); }, false},
    {"no texts at all", 100000, [](std::size_t n) { return Lines(std::string_view("\0\xFF", 2), n); }, false},
};

metadb::KeyData Key(std::uint32_t psid, std::string name, const char* type, std::int64_t max) {
    metadb::KeyData key;
    key.uid = static_cast<std::int32_t>(psid);
    key.psid = psid;
    key.name = std::move(name);
    key.type = type;
    key.max = max;
    key.access = "read_write";
    return key;
}

template <typename Record>
Record ArrayOf(Record record) {
    record.isArray = true;
    record.arrayMin = 1;
    record.arrayMax = UNBOUNDED;
    return record;
}

metadb::KeyData WithFormat(metadb::KeyData key, const char* format) {
    key.format = format;
    return key;
}

metadb::FieldData Field(std::int32_t uid, const char* name, const char* type) {
    metadb::FieldData field;
    field.uid = uid;
    field.name = name;
    field.type = type;
    field.max = 255;
    field.access = "read_write";
    return field;
}

}  // namespace

std::span<const GrowthText> GrowthTexts() { return TEXTS; }

void WriteGrowthDatabase(const std::string& path) {
    metadb::SystemData system;
    system.label = GROWTH_SYSTEM;
    system.chipId = 76;
    metadb::SubsystemData& app = system.subsystems.emplace_back();
    app.name = "app";
    app.enums.push_back({"mode", {{"off", 0}, {"on", 1}}});
    app.structs.push_back(
        {"inner", {Field(1000001, "first", "uint8"), ArrayOf(Field(1000002, "list", "uint8"))}});
    app.structs.push_back({"outer", {Field(1000003, "first", "uint8"), Field(1000004, "inner", "inner")}});
    std::uint32_t psid = 0;
    for (std::size_t i = 0; i < GROWTH_KEYS; ++i) {
        ++psid;
        app.keys.push_back(Key(psid, "k" + std::to_string(i), "uint8", 255));
    }
    const char* const octets = "octet_string";
    const char* const unicode = "unicode_string";
    app.keys.push_back(ArrayOf(Key(++psid, "numbers", "uint32", 0xFFFFFFFF)));
    app.keys.push_back(ArrayOf(Key(++psid, "modes", "mode", 1)));
    app.keys.push_back(ArrayOf(WithFormat(Key(++psid, "texts", octets, UNBOUNDED), unicode)));
    app.keys.push_back(ArrayOf(Key(++psid, "blobs", octets, UNBOUNDED)));
    app.keys.push_back(ArrayOf(WithFormat(Key(++psid, "macs", octets, 6), "mac_addr")));
    app.keys.push_back(ArrayOf(Key(++psid, "structs", "outer", 0)));
    app.keys.push_back(Key(++psid, "nested", "outer", 0));
    app.keys.push_back(WithFormat(Key(++psid, "text", octets, UNBOUNDED), unicode));
    app.keys.push_back(Key(++psid, "blob", octets, UNBOUNDED));
    metadb::KeyData& table = app.keys.emplace_back(Key(++psid, "table", "uint8", 255));
    table.indexes.push_back({"row", 0, UNBOUNDED, false, {}});
    std::ofstream(path, std::ios::binary) << metadb::SerializeDatabase({system});
}

}  // namespace KesBench
