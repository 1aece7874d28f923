// The JSON source of metadata: what is rejected, with which position, and that a database preserves
// everything.

#include "metadb/JsonSource.h"
#include "metadb/MetadataDatabase.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace VemoKesConfigTools::metadb;
using KesTest::TempFolder;

namespace {

/// A source with one subsystem, whose keys and types are on separate lines.
std::string Source(const std::string& keys, const std::string& types = "",
                   const std::string& subsystem = "bt") {
    return "{\"systems\": [{\"label\": \"s1\", \"chip\": {\"name\": \"C\", \"id\": 75}, \"subsystems\": [\n"
           "{\"name\": \"" +
           subsystem + "\"," + types + " \"keys\": [\n" + keys + "\n]}]}]}\n";
}

std::vector<std::string> Faults(const std::string& text) {
    std::vector<SystemData> systems;
    std::vector<SourceFault> faults;
    ReadJsonSource(text, 0, systems, faults);
    std::vector<std::string> shown;
    for (const SourceFault& fault : faults) {
        shown.push_back(std::to_string(fault.place.line) + ":" + std::to_string(fault.place.column) + ": " +
                        fault.text);
    }
    return shown;
}

TEST(MetadataSource, ReportsFaultsWithTheirPlaces) {
    const std::string good = R"({"psid": 1, "name": "a", "type": "uint8"})";
    const struct {
        std::string source;
        std::string fault;
    } rows[] = {
        {"",
         "1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal"},
        {"{\n\"systems\": [,]}",
         "2:13: syntax error while parsing value - unexpected ','; expected '[', '{', or a literal"},
        {"[]", "1:1: the source must be an object"},
        {"{}", "1:1: member \"systems\" is missing"},
        {"{\"systems\": 5}", "1:13: \"systems\" must be an array"},
        {"{\"systems\": [], \"systems\": []}", "1:17: \"systems\" is given twice"},
        {"{\"systems\": [], \"more\": 1}", "1:17: unknown member \"more\", must be one of $schema, systems"},
        {Source(good, "", "radio"),
         "2:10: unknown subsystem \"radio\", must be one of \"curator\", \"bt\", \"wlan\", \"audio\", "
         "\"gnss\", \"nfc\", "
         "\"janitor\", \"app\", \"ble\", \"psapps\", \"psaudio\""},
        {Source(R"({"name": "a", "type": "uint8"})"), "3:1: member \"psid\" is missing"},
        {Source(R"({"psid": -1, "name": "a", "type": "uint8"})"),
         "3:10: \"psid\" must be between 0 and 4294967295, -1 found"},
        {Source(R"({"psid": 1.5, "name": "a", "type": "uint8"})"), "3:10: \"psid\" must be a 64-bit integer"},
        {Source(R"({"psid": 1, "name": "a-b", "type": "uint8"})"),
         "3:21: invalid name \"a-b\", must be letters, digits and \"_\", not starting with a digit"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "lable": "x"})"),
         "3:43: unknown member \"lable\", must be one of uid, name, type, label, description, "
         "description_internal, format, "
         "min, max, units, access, internal, array, oid, source, psid, indexes, default, defaults"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint9"})"),
         "3:34: unknown type \"uint9\", must be one of \"uint8\", \"uint16\", \"uint32\", \"uint64\", "
         "\"int8\", \"int16\", "
         "\"int32\", \"int64\", \"integer\", \"octet_string\" or an enum or struct of the subsystem"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "max": 256})"),
         "3:50: \"max\" is outside the range of type uint8"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "max": 18446744073709551615})"),
         "3:50: \"max\" must be a 64-bit integer"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "min": 5, "max": 4})"),
         "3:1: \"min\" 5 is greater than \"max\" 4"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "format": "mac_addr"})"),
         "3:53: \"format\" must be one of \"\", \"signed_decimal\", \"unsigned_decimal\", \"hexadecimal\""},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "array": {"min": 1}})"),
         "3:52: member \"max\" is missing"},
        {Source(good + ",\n" + R"({"psid": 1, "name": "b", "type": "uint8"})"),
         "4:10: another key has the number 1"},
        {Source(good + ",\n" + R"({"psid": 2, "name": "a", "type": "uint8"})"),
         "4:21: another key has the name \"a\""},
        {Source(R"({"psid": 1, "uid": 3, "name": "a", "type": "uint8"})"
                ",\n"
                R"({"psid": 2, "uid": 3, "name": "b", "type": "uint8"})"),
         "4:20: another record has the uid 3"},
        {Source(good, "\n\"enums\": {\"E\": {}},"), "3:16: an enumeration must have a value"},
        {Source(good, "\n\"enums\": {\"E\": {\"on\": 1, \"ON\": 2}},"),
         "3:26: \"ON\" differs from another enumerator only in case"},
        {Source(good, "\n\"enums\": {\"E\": {\"1st\": 1}},"), "3:17: invalid enumerator name \"1st\""},
        {Source(good, "\n\"structs\": {\"uint8\": [{\"name\": \"f\", \"type\": \"int8\"}]},"),
         "3:13: type \"uint8\" already exists"},
        {Source(good, "\n\"structs\": {\"S\": [{\"name\": \"f\", \"type\": \"integer\"}]},"),
         "3:19: a field of type \"integer\" must have a \"width\""},
        {Source(good, "\n\"structs\": {\"S\": [{\"name\": \"f\", \"type\": \"S\"}]},"),
         "3:13: struct \"S\": it contains itself"},
        {Source(good,
                "\n\"structs\": {\"S\": [{\"name\": \"f\", \"type\": \"T\"}],\n\"T\": [{\"name\": \"f\", "
                "\"type\": \"S\"}]},"),
         "3:13: struct \"S\": it contains itself"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "default": "1 # x"})"),
         "3:54: a default value must be one line without comments"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "default": "1\\"})"),
         "3:54: a default value must be one line without comments"},
        {Source(R"({"psid": 0, "name": "a", "type": "uint8", "default": "1"})"),
         "3:54: a key without a number cannot have a default"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "defaults": {"1": "1"}})"),
         "3:55: a key without indexes takes \"default\""},
        {Source(
             R"({"psid": 1, "name": "a", "type": "uint8", "indexes": [{"name": "i"}], "defaults": {"1.2": "1"}})"),
         "3:84: \"1.2\" is not a list of 1 indexes"},
        {Source(R"({"psid": 1, "name": "a", "type": "uint8", "default": "1"})", "", "gnss"),
         "3:54: the text format has no subsystem gnss, so its keys cannot have defaults"},
        {Source(R"({"psid": 1, "name": "a\u0000", "type": "uint8"})"),
         "3:21: \"name\" contains a NUL character"},
    };
    for (const auto& row : rows) {
        const std::vector<std::string> faults = Faults(row.source);
        ASSERT_FALSE(faults.empty()) << row.source;
        EXPECT_EQ(faults.front(), row.fault) << row.source;
    }
    EXPECT_EQ(Faults(Source(good)), std::vector<std::string>());
}

TEST(MetadataSource, FindsAllFaultsOfASourceAtOnce) {
    EXPECT_EQ(
        Faults(
            Source(
                "{\"psid\": 1, \"name\": \"1a\", \"type\": \"uint8\"},\n5,\n{\"psid\": 2, \"type\": \"x\"}"))
            .size(),
        4U);
}

TEST(MetadataSource, TheStructOfAKeyHasALimitedNumberOfValues) {
    // Each struct contains twice as many values as the previous one: 2^16 in the last.
    std::string structs = R"("structs": {"S0": [{"name": "a", "type": "uint8"}])";
    for (int i = 1; i <= 16; ++i) {
        const std::string field = R"("type": "S)" + std::to_string(i - 1) + "\"}";
        structs += ", \"S" + std::to_string(i) + R"(": [{"name": "a", )" + field + R"(, {"name": "b", )" +
                   field + "]";
    }
    structs += R"(, "More": [{"name": "a", "type": "S16"}, {"name": "b", "type": "uint8"}]},)";
    const std::string most = R"({"psid": 1, "name": "a", "type": "S16"})";
    EXPECT_TRUE(Faults(Source(most, structs)).empty()) << "More is used by no key";
    EXPECT_EQ(Faults(Source(most + ",\n" + R"({"psid": 2, "name": "b", "type": "More"})", structs)),
              std::vector<std::string>{"4:34: its struct More contains more than 65536 values"});
}

TEST(MetadataSource, StructsHaveALimitedDepth) {
    const auto nested = [](std::size_t depth) {
        std::string structs = "\"structs\": {";
        for (std::size_t i = 1; i <= depth; ++i) {
            const std::string type = i == depth ? "uint8" : "S" + std::to_string(i + 1);
            structs += (i == 1 ? "" : ", ") + ("\"S" + std::to_string(i)) +
                       "\": [{\"name\": \"f\", \"type\": \"" + type + "\"}]";
        }
        return Source(R"({"psid": 1, "name": "a", "type": "S1"})", structs + "},");
    };
    EXPECT_TRUE(Faults(nested(MAXIMUM_STRUCT_DEPTH)).empty());
    ASSERT_EQ(Faults(nested(MAXIMUM_STRUCT_DEPTH + 1)).size(), 1U);
    EXPECT_NE(Faults(nested(100000)).front().find("nested more than 100 levels deep"), std::string::npos);
    EXPECT_NE(Faults("{\"systems\": " + std::string(100000, '[')).front().find("nested too deeply"),
              std::string::npos);
}

TEST(MetadataSource, FillsInOmittedMembers) {
    std::vector<SystemData> systems;
    std::vector<SourceFault> faults;
    ReadJsonSource(
        Source(
            R"({"psid": 1, "name": "a", "type": "int16"}, {"psid": 2, "uid": 1, "name": "b", "type": "octet_string"},
                             {"psid": 3, "name": "c", "type": "uint64", "indexes": [{"name": "i", "values": {"x": 4, "y": 2}}]})",
            R"("structs": {"S": [{"name": "f", "type": "uint8"}, {"name": "g", "type": "integer", "width": 3},
                                               {"name": "h", "type": "uint16", "lsb": 16, "array": {"min": 2, "max": 2}}, {"name": "i", "type": "int8"}]},)"),
        0, systems, faults);
    ASSERT_TRUE(faults.empty());
    const SubsystemData& bt = systems[0].subsystems[0];
    EXPECT_EQ(bt.keys[0].uid, 2) << "the first number that is free";
    EXPECT_EQ(bt.keys[0].min, -32768);
    EXPECT_EQ(bt.keys[0].access, "read_write");
    EXPECT_EQ(bt.keys[1].max, 65535);
    EXPECT_EQ(bt.keys[2].max, INT64_MAX) << "the highest number that a record can state";
    EXPECT_EQ(bt.keys[2].indexes[0].min, 2);
    EXPECT_EQ(bt.keys[2].indexes[0].max, 4);
    const std::vector<FieldData>& fields = bt.structs[0].fields;
    EXPECT_EQ(fields[1].lsb, 8);
    EXPECT_EQ(fields[2].width, 16);
    EXPECT_EQ(fields[3].lsb, 48) << "behind both items of the array";
}

TEST(MetadataSource, NothingIsLostThroughADatabase) {
    const TempFolder folder;
    std::vector<SystemData> systems;
    std::vector<SourceFault> faults;
    for (const char* name : {"520", "524", "310", "205"}) {
        ReadJsonSource(KesTest::ReadFile(KesTest::EXAMPLE_FOLDER + "/ostrell-" + name + ".json"), 0, systems,
                       faults);
    }
    ASSERT_TRUE(faults.empty()) << faults.front().text;
    const std::string bytes = SerializeDatabase(systems);
    const std::string text = WriteJsonSource(systems);
    EXPECT_EQ(WriteJsonSource(MetadataDatabase(folder.Write("a.db", bytes)).LoadAll()), text);

    std::vector<SystemData> again;
    ReadJsonSource(text, 0, again, faults);
    ASSERT_TRUE(faults.empty()) << faults.front().text;
    EXPECT_EQ(WriteJsonSource(again), text);
    EXPECT_EQ(SerializeDatabase(again), bytes) << "equal sources give equal bytes";
}

}  // namespace
