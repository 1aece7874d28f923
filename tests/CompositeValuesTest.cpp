// Arrays, structs and raw values. The lines follow a keyword line and start at line 2 of their text.

#include "support/TextReading.h"

#include <gtest/gtest.h>

namespace {

using namespace KesTest;

struct Row {
    std::string lines;
    std::string outcome;
};

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(OutcomeInAudio(row.lines), row.outcome) << row.lines;
}

/// Reads lines with the keys of `Structs`.
std::string WithStructs(const std::string& line) {
    static MemoryProvider& provider = []() -> MemoryProvider& {
        static MemoryProvider made;
        made.AddSubsystem("audio");
        const auto bits = [&](const std::string& name, const std::string& format) -> Record& {
            return made.Field(name, "integer").Format(format);
        };
        const Record& byte = made.Field("count", "uint8").Range(1, 9);
        const Record& nibble = bits("nibble", "hexadecimal");
        const Record& signedNibble = bits("level", "signed_decimal");
        const Record& mode = made.Field("mode", "MODE").Enum({{"ON", 1}, {"OFF", 0}});
        const Record& list = made.Field("list", "uint16").Range(0, 99).Array(1, 3);
        const Record& names = made.Field("names", "octet_string").Range(0, 9).Array(1, 2);
        const Record& text = made.Field("text", "octet_string").Format("unicode_string").Range(0, 9);
        const Record& modes = made.Field("modes", "MODE").Enum({{"ON", 1}}).Array(1, 2);
        made.Key(1, "bits", "BITS").Struct({{&byte, 8}, {&nibble, 4}});
        made.Key(2, "level", "LEVEL").Struct({{&signedNibble, 4}});
        made.Key(3, "one", "ONE").Struct({{&signedNibble, 1}});
        const std::pair<const Record*, std::int32_t> wide[] = {{&nibble, 9},  {&signedNibble, 9},
                                                               {&nibble, 17}, {&signedNibble, 17},
                                                               {&nibble, 33}, {&signedNibble, 64}};
        made.Key(4, "widths", "WIDTHS").Struct({std::begin(wide), std::end(wide)});
        const Record& inner = made.Key(5, "inner", "INNER").Struct({{&mode, 8}, {&text, 0}});
        made.Key(6, "outer", "OUTER").Struct({{&byte, 8}, {&inner, 16}});
        made.Key(7, "lists", "LISTS").Struct({{&byte, 8}, {&list, 48}});
        made.Key(8, "strings", "STRINGS").Struct({{&names, 8}});
        made.Key(9, "enums", "ENUMS").Struct({{&modes, 8}});
        made.Key(10, "table", "INNER").Struct({{&mode, 8}, {&text, 0}}).Array(1, 2);
        const Record& innerList = made.Field("cells", "BITS").Struct({{&byte, 8}, {&nibble, 4}}).Array(1, 2);
        made.Key(11, "nested", "NESTED").Struct({{&innerList, 24}});
        made.Key(12, "empty", "EMPTY").kind = METADATA_TYPE_STRUCT;
        made.Key(13, "wide", "WIDE").Struct({{&nibble, 64}});
        return made;
    }();
    std::string outcome = Outcome(Read("file=audio\n" + line, provider));
    const std::size_t end = outcome.rfind(']');
    outcome.erase(end, 1);
    return outcome.size() > 8 ? outcome.substr(8) : std::string();
}

void CheckStructs(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(WithStructs(row.lines), row.outcome) << row.lines;
}

TEST(CompositeValues, ArraysListTheirItems) {
    Check({
        {"words = {1, 2, 300}", "19 words=u16:1 u16:2 u16:300"},
        {"words = {1,2}", "19 words=u16:1 u16:2"},
        {"words = { 1\t, 0x2 \\\n } # c", "19 words=u16:1 u16:2"},
        {"words = {% 1 2 %, 3}", "19 words=u64:1 u64:2 u16:3"},
        {"names = {\"a,}\", [62]}", "22 names=\"a,}\" \"b\""},
        {"modes = {}", "21 modes=MODE_A(0)"},
        {"words = {}", "! 2:10 #32 Number expected: words"},
        {"words = {1, 2,}", "! 2:15 #32 Number expected: words"},
        {"words = {1 2}", "! 2:13 #11 Missing comma: words"},
        {"words = {1, 2", "! 2:14 #10 Missing closing brace: words"},
        {"words = 1, 2", "! 2:10 #9 Missing opening brace: words"},
        {"words = {1, 2} 3",
         "19 words=u16:1 u16:2 ! 2:17 #4 Unexpected text  unexpected text '3' at end of line"},
        {"words = {65536}", "! 2:14 #31 Number too large: words"},
    });
}

TEST(CompositeValues, ArraysCheckTheirLength) {
    Check({
        {"words = {1, 2, 3, 4}",
         "! 2:21 #38 Wrong array length: words must have between 1 and 3 items. 4 found."},
        {"two = {1}", "! 2:10 #38 Wrong array length: two must have 2 items. 1 found."},
        {"words = {1, 2, 3, 4, x}", "! 2:22 #32 Number expected: words"},
    });
}

TEST(CompositeValues, StructsTakeOneValuePerField) {
    CheckStructs({
        {"bits = {1, 0x0F}", "1 bits=struct{u8:1,u8:15}"},
        {"bits =  \\\n{ \\\n 0x03 /* count */ , \\\n 4 /* nibble */ } \\\n", "1 bits=struct{u8:3,u8:4}"},
        {"widths = {511, -256, 131071, -65536, 0x1FFFFFFFF, -9223372036854775808}",
         "4 widths=struct{u16:511,i16:-256,u32:131071,i32:-65536,u64:8589934591,i64:-9223372036854775808}"},
        {"outer = {1, {on, \"x}\"}}", "6 outer=struct{u8:1,struct{ON(1),\"x}\"}}"},
        {"lists = {1, {2, 3}}", "7 lists=struct{u8:1,u16{u16:2,u16:3}}"},
        {"lists = {1, {2}}", "7 lists=struct{u8:1,u16{u16:2}}"},
        {"table = {{ON, \"a\"}, {OFF, [62]}}", "10 table=struct{ON(1),\"a\"} struct{OFF(0),\"b\"}"},
        {"nested = {{{1, 2}, {3, 4}}}", "11 nested=struct{struct{struct{u8:1,u8:2},struct{u8:3,u8:4}}}"},
        {"bits = 1, 2}", "! 2:9 #9 Missing opening brace: bits"},
        {"bits = {1}", "! 2:11 #11 Missing comma: bits"},
        {"bits = {1, 2, 3}", "! 2:14 #10 Missing closing brace: bits"},
        {"bits = {1, 2\nlevel = {1}", "2 level=struct{i8:1} ! 3:1 #10 Missing closing brace: bits"},
        {"bits = {1, 2", "! 2:13 #10 Missing closing brace: bits"},
        {"bits = {, 2}", "! 2:9 #32 Number expected: bits"},
        {"table = {{ON, \"a\"} {OFF, \"b\"}}", "! 2:21 #11 Missing comma: table"},
        {"empty = {}", "! 2:10 #1 Value is not supported: empty"},
    });
}

TEST(CompositeValues, FieldsCheckTheirRange) {
    CheckStructs({
        {"bits = {1, 0x10}", "! 2:16 #24 Number is too large: bits  must be between 0 and 15 (val=16)"},
        {"bits = {1, 256}", "! 2:14 #24 Number is too large: bits  must be between 0 and 15 (val=25)"},
        {"bits = {10, 1}", "! 2:11 #24 Number is too large: bits  count must be between 1 and 9 (val=10)"},
        {"bits = {0, 1}", "! 2:10 #23 Number is too small: bits  count must be between 1 and 9 (val=0)"},
        {"level = {-8}", "2 level=struct{i8:-8}"},
        {"level = {7}", "2 level=struct{i8:7}"},
        {"level = {8}", "! 2:11 #24 Number is too large: level  must be between -8 and 7 (val=8)"},
        {"level = {-9}", "! 2:12 #23 Number is too small: level  must be between -8 and 7 (val=-9)"},
        {"level = {-1299}", "! 2:13 #23 Number is too small: level  must be between -8 and 7 (val=-12)"},
        {"one = {1}", "3 one=struct{i8:1}"},
        {"one = {-1}", "! 2:10 #23 Number is too small: one  must be between 0 and 1 (val=-1)"},
        {"wide = {0xFFFFFFFFFFFFFFFF}",
         "! 2:27 #23 Number is too small: wide  must be between 0 and 9223372036854775807 (val=-1)"},
        {"lists = {1, {100}}", "! 2:19 #24 Number is too large: lists  must be between 0 and 99 (val=100)"},
    });
}

TEST(CompositeValues, RawFieldsAndArraysWithoutAPayloadType) {
    CheckStructs({
        {"outer = {1, %5 [06]%}", "6 outer=struct{u8:1,struct{u64:5,\"<06>\"}}"},
        {"inner = {%5%, \"a\"}", "5 inner=struct{u64:5,\"a\"}"},
        {"bits = {%%, 1}", "! 2:15 #1 Value is not supported: bits"},
        {"inner = {ON, %%}", "! 2:17 #1 Value is not supported: inner"},
        {"lists = {1, %%}", "7 lists=struct{u8:1,u16{}}"},
        {"strings = {{[01]}}", "! 2:19 #1 Value is not supported: strings"},
        {"enums = {{ON}}", "! 2:15 #1 Value is not supported: enums"},
    });
}

TEST(CompositeValues, RawItemsAreEnclosedInPercentSigns) {
    Check({
        {"99 = % 18446744073709551615 [] %", "99=u64:18446744073709551615 \"\""},
        {"99 = %1%", "99=u64:1"},
        {"99 = % 1 2\nu8 = 1", "1 u8=u8:1 ! 2:11 #4 Unexpected text: Id: 99"},
        {"99 = % 1 2", "! 2:11 #10 Missing closing brace: Id: 99"},
        {"99 = % 1 2 ", "! 2:12 #10 Missing closing brace: Id: 99"},
        {"99 = % 1, 2 %", "! 2:9 #4 Unexpected text: Id: 99"},
        {"99 = % -1 %", "! 2:8 #4 Unexpected text: Id: 99"},
        {"99 = % \xFF %", "! 2:8 #4 Unexpected text: Id: 99"},
        {"99 = % [0 %", "! 2:10 #6 Invalid octet value: Id: 99"},
    });
}

TEST(CompositeValues, RawItemsInBtAreWordsOnMostChips) {
    const auto onChip = [](const std::string& chip, const std::string& line) {
        CChipConfig config;
        CKesContext context;
        context.SetChip(chip);
        return Outcome(Read("file=bt\n" + line, config, context));
    };
    EXPECT_EQ(onChip("sys_1_0", "99 = % 1 0x2 %"), "[1/15/1 99=u16:1 u16:2]");
    EXPECT_EQ(onChip("sys_1_0", "99 = % [01] %"), "[1/15/1] ! 2:8 #4 Unexpected text: Id: 99");
    EXPECT_EQ(onChip("sys_1_0", "99 = % 65536 %"), "[1/15/1] ! 2:12 #31 Number too large: Id: 99");
    EXPECT_EQ(onChip("unknown", "99 = % 1 %"), "[1/15/1 99=u16:1]");
    EXPECT_EQ(onChip("sys_arm", "99 = % 1 [02] %"), "[1/15/1 99=u64:1 \"<02>\"]");
    EXPECT_EQ(onChip("sys_1_0", "cur2.u8 = % 70000 %"), "[1/15/1] [0/15/2 1 u8=u64:70000]");
}

}  // namespace
