// Lines of key, delimiter and value: how a key is found, what an empty value does, and what remains of an
// invalid line. Unless noted otherwise, the lines follow a keyword line and start at line 2 of their text.

#include "support/PlainReading.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using namespace KesTest;

struct Row {
    std::string lines;
    std::string outcome;
};

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(OutcomeInAudio(row.lines), row.outcome) << row.lines;
}

TEST(KeyLines, KeysGoByNameOrNumber) {
    Check({
        {"rf_gain = 5", "4660 rf_gain=u8:5"},
        {"rf_gain=5", "4660 rf_gain=u8:5"},
        {" \trf_gain\t= 5 \t", "4660 rf_gain=u8:5"},
        {"4660 = 5", "4660 rf_gain=u8:5"},
        {"0x1234 = 5", "4660 rf_gain=u8:5"},
        {"rf_gain /* c */ = /* x */ 5 # y", "4660 rf_gain=u8:5"},
        {"rf_\\\ngain = 1\\\n2", "4660 rf_gain=u8:12"},
        {"RF_GAIN = 5", "! 2:11 #26 Unknown name: RF_GAIN"},
        {"rf_gian = 5", "! 2:11 #26 Unknown name: rf_gian"},
        {"1234 = 5", "! 2:8 #26 Unknown name: Id: 1234"},
        {"0 = 5", "! 2:5 #21 Unknown name: no_number"},
        {"no_number = 5", "! 2:10 #21 Unknown name: no_number"},
        {"4294967295 = 5", "! 2:14 #26 Unknown name: Id: 4294967295"},
        {"4294967296 = 5", "! 2:10 #31 Number too large"},
        {"= 5", "! 2:1 #35 A name must be given"},
        {std::string("\0 = 5", 5), "! 2:1 #35 A name must be given"},
        {"99ab = 5", "! 2:3 #2 Invalid delimiter: Id: 99"},
    });
}

TEST(KeyLines, IndicesAreCountedWhenTheyAreGiven) {
    Check({
        {"rf_table.1.2 = -4", "4661.1.2 rf_table=i8:-4"},
        {"4661.+1.4294967295 = 1", "4661.1.4294967295 rf_table=i8:1"},
        {"rf_table = 1", "4661 rf_table=i8:1"},
        {"rf_table.1 = 1", "! 2:11 #25 Wrong number of indices: rf_table requires 2 indices"},
        {"4662.1.2 = 1", "! 2:9 #25 Wrong number of indices: Id: 4662 requires 1 index"},
        {"rf_gain.1 = 5", "! 2:10 #25 Wrong number of indices: rf_gain requires 0 indices"},
        {"rf_table.1. = 1", "! 2:12 #32 Number expected: rf_table"},
        {"rf_table.x = 1", "! 2:10 #32 Number expected: rf_table"},
        {"rf_table.-1 = 1", "! 2:10 #33 An unsigned number was expected: rf_table"},
        {"rf_table.4294967296 = 1", "! 2:19 #31 Number too large: rf_table"},
        {"rf_table.1.0x2 = 1", "! 2:13 #2 Invalid delimiter: rf_table"},
        {"1234.1 = 5", "! 2:10 #1 Value is not supported: Id: 1234"},
        {"1234.1 = % 1 %", "1234.1=u64:1"},
    });
}

TEST(KeyLines, DelimiterIsAnEqualsSign) {
    Check({
        {"rf_gain\nrf_gain = 1", "4660 rf_gain=u8:1 ! 2:8 #3 Delimiter missing: rf_gain"},
        {"rf_gain", "! 2:8 #2 Invalid delimiter: rf_gain"},
        {"rf_gain : 1", "! 2:9 #2 Invalid delimiter: rf_gain"},
        {"rf_gain /* c */: 1", "! 2:9 #2 Invalid delimiter: rf_gain"},
    });
}

TEST(KeyLines, RawValuesNeedNoMetadataUnderANumber) {
    Check({
        {"1234 = % 1 0x2 [ 01 02 ] %", "1234=u64:1 u64:2 \"<01><02>\""},
        {"rf_gain = % 300 %", "4660 rf_gain=u64:300"},
        {"1234 = %%", "1234="},
        {"rf_gian = % 1 %", "! 2:11 #21 Unknown name: rf_gian"},
        {"0xFFFF.1 = %1%", "65535.1=u64:1"},
    });
}

TEST(KeyLines, ValuesReplaceOneAnotherOrAreAppended) {
    Check({
        {"u8 = 1\nu16 = 2\nu8 = 3", "1 u8=u8:3; 2 u16=u16:2"},
        {"rf_offset.1 = 1\nrf_offset.2 = 2\nrf_offset.1 = 3", "4662.1 rf_offset=i8:3; 4662.2 rf_offset=i8:2"},
        {"u8 = 1\nu16 = 2\nu8 =", "2 u16=u16:2"},
        {"u8 = # removed\nu8 = 1", "1 u8=u8:1"},
        {"rf_offset.1 = 1\nrf_offset.2 = 2\nrf_offset.1 =\n", "4662.2 rf_offset=i8:2"},
        {"words =", ""},
    });
    CChipConfig config;
    CKesContext context;
    context.SetTag(STR_INSERT_MODE, STR_APPEND);
    EXPECT_EQ(Read("file=bt\nu8 = 1\nu16 = 2\nu8 = 3\nu8 =\n", config, context).dump,
              "[1/15/1 1 u8=u8:1; 2 u16=u16:2; 1 u8=u8:3; 1 u8=]");
}

TEST(KeyLines, TextAfterAValueIsReportedAfterTheValueWasTaken) {
    Check({
        {"u8 = 5 6\nu16 = 2",
         "1 u8=u8:5; 2 u16=u16:2 ! 3:1 #4 Unexpected text  unexpected text '6' at end of line"},
        {"u8 = 5 /* c\n */ 6 # d\nu16 = 2",
         "1 u8=u8:5; 2 u16=u16:2 ! 4:1 #4 Unexpected text  unexpected text '6 ' at end of line"},
        {"u8 = 12ab", "1 u8=u8:12 ! 2:10 #4 Unexpected text  unexpected text 'ab' at end of line"},
        {"u8 = 5 \\\\\n6", "1 u8=u8:5 ! 3:2 #4 Unexpected text  unexpected text '\\6' at end of line"},
    });
}

TEST(KeyLines, AnInvalidLineIsSkippedAlone) {
    Check({
        {"u8 = x y z\nu16 = 1", "2 u16=u16:1 ! 2:6 #32 Number expected: u8"},
        {"words = {1, 2\nu16 = 1", "2 u16=u16:1 ! 3:1 #11 Missing comma: words"},
        {"words = {1, 2\n\nu16 = 1", "2 u16=u16:1 ! 3:1 #11 Missing comma: words"},
        {"blob = \\\n x\nu16 = 1", "2 u16=u16:1 ! 3:3 #19 Missing open bracket: blob"},
        // The skipped part of an invalid line is still read through the filters.
        {"u8 = x /* \nu8 = 1\n */ y\nu16 = 1", "2 u16=u16:1 ! 2:6 #32 Number expected: u8"},
        {"u8 = x \\\nu8 = 1\nu16 = 1", "2 u16=u16:1 ! 2:6 #32 Number expected: u8"},
        {"u8 = x # /*\nu16 = 1", "2 u16=u16:1 ! 2:6 #32 Number expected: u8"},
        {"/* c\n */ u8 = x\nu16 = 1", "2 u16=u16:1 ! 3:10 #32 Number expected: u8"},
        {"u8 = x\nu8 = y\n\nu8 = z",
         "! 2:6 #32 Number expected: u8 | 3:6 #32 Number expected: u8 | 5:6 #32 Number expected: u8"},
    });
}

TEST(KeyLines, APlaceInTheContextDoesNotReplaceOneInTheText) {
    const auto outcome = [](const std::string& text) {
        CChipConfig config;
        CKesContext context;
        context.SetSubsystemType(SUBSYSTEM_CURATOR);
        context.SetDevice(1);
        context.SetStore(1);
        return Outcome(Read(text, config, context));
    };
    const std::string notSet = "#27 Subsystem must be set using 'file=' or 'subsystem=' before setting value";
    EXPECT_EQ(outcome("u8 = 1\nfile=bt\nu8 = 2"), "! 1:1 " + notSet);
    EXPECT_EQ(outcome("bt3.u8 = 1\nu8 = 1"), "[1/15/3 1 u8=u8:1] ! 2:1 " + notSet);
    EXPECT_EQ(outcome("file=bt\nu8 = 2"), "[1/15/1 1 u8=u8:2]");
    EXPECT_EQ(outcome("bt3.1234.1 = % 1 %\nfile=bt"), "[1/15/1]") << "nobody there to take the element";
}

TEST(KeyLines, ElementsAndValuesKnowTheirRecords) {
    CChipConfig config;
    CKesContext context = OverwriteContext();
    Read("file=audio\nu8 = 1\n17 = 0\ndev_name = \"a\"\nrf_gain = % 1 %\n1234 = % 1 %\nwords = {1, 2}\n",
         config, context);
    std::string records;
    const auto note = [&](const IMetadata* record) {
        records += record == nullptr ? " none" : record->IsValid() ? " " + record->Name() : " null";
    };
    for (const CElement* element : config.Subsystems().begin()->second->Elements()) {
        note(element->Metadata());
        records += ":";
        for (const IPayload* payload : element->Payloads()) {
            note(dynamic_cast<const IMetadataUser&>(*payload).Metadata());
        }
    }
    EXPECT_EQ(records, " u8: u8 mode: mode dev_name: none rf_gain: none null: none words: words words");
}

TEST(KeyLines, RecordsAreThoseOfTheCurrentPlace) {
    EXPECT_EQ(Outcome(Read("file=bt\nbt_only = 1\nfile=cur\nbt_only.1 = 5")),
              "[1/15/1 4663 bt_only=u8:1] [0/15/1] ! 4:13 #1 Value is not supported: bt_only");
    EXPECT_EQ(Outcome(Read("file=bt\ndiffers = 255\nfile=cur\ndiffers = -1")),
              "[1/15/1 4664 differs=u8:255] [0/15/1 4664 differs=i8:-1]");
}

TEST(KeyLines, ARawValueForgivesTheErrorOfItsLookup) {
    MemoryProvider provider;
    provider.AddSubsystem("audio");
    provider.errorForUnknown = "no such key";
    const Reading reading = Read("file=audio\n1234 = % 1 %", provider);
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(reading.dump, "[3/15/1 1234=u64:1]");
}

/// The fast path that reads a line directly gives the same result as reading its tokens. Tried with random
/// lines of pieces on which the two could differ.
TEST(KeyLines, PlainLinesGiveTheResultOfTheirTokens) {
    const std::vector<std::string> keys = {
        "u8",           "u16",       "i8",      "i32",      "u64",   "whole", "blob", "dev_name",
        "mode",         "words",     "two",     "modes",    "names", "1",     "0x2",  "0",
        "4294967296",   "no_number", "audio16", "audio15x", "bt",    "store", "file", "nothing",
        "rf_table.1.2", "bt2.u8",    "_x",      "u8 ",      "\tu8"};
    const std::vector<std::string> values = {"1",
                                             "0x7F",
                                             "-1",
                                             "+3",
                                             "256",
                                             "0x",
                                             "",
                                             "MODE_A",
                                             "mode_fast",
                                             "3",
                                             "MODE-X",
                                             "[ 01 0203 ]",
                                             "[]",
                                             "[ 1 ]",
                                             "\"text\"",
                                             "\"# /* \"",
                                             "\"a\\n\"",
                                             "\"open",
                                             "{1, 2}",
                                             "{ 1 ,2,3 }",
                                             "{}",
                                             "{1 2}",
                                             "{1, 2, 3, 4}",
                                             "{MODE_A}",
                                             "{\"a\", \"b\"}",
                                             "% 1 %",
                                             "/* c */ 5",
                                             "5 /* c */",
                                             "5 # c",
                                             "5 # c\\",
                                             "\\\n5",
                                             "5 6",
                                             "bt3",
                                             "bt16",
                                             "x"};
    const std::vector<std::string> between = {" = ", "=", " ", " =", "\t=\t", "/**/=", " \\\n= ", ": "};
    const std::vector<std::string> ends = {"\n",        "\n",        "\n\n  \n", " \n# c\n",
                                           "  # c\r\n", "\n# c\\\n", "",         "\n/* c\n*/"};
    std::mt19937 random(7);
    const auto pick = [&](const std::vector<std::string>& from) {
        return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
    };
    for (int round = 0; round < 3000; ++round) {
        std::string text = round % 3 == 0   ? "file=audio\n"
                           : round % 3 == 1 ? "FILE = bt2 # c\n"
                                            : "subsystem=bt\n";
        for (int line = 0; line < 6; ++line) text += pick(keys) + pick(between) + pick(values) + pick(ends);
        CKesContext context = OverwriteContext();
        if (round % 2 == 0) context.SetTag(STR_INSERT_MODE, STR_APPEND);
        ASSERT_EQ(Told<CKesConfigReader>(text, context, TextKeys()),
                  Told<PlainConfigReader>(text, context, TextKeys()))
            << text;
    }
}

}  // namespace
