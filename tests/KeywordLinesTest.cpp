// The lines that set the place of the following keys, and places given as a prefix of a key.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "support/TextReading.h"

#include <gtest/gtest.h>

namespace {

using namespace KesTest;

struct Row {
    std::string text;
    std::string outcome;
};

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(Outcome(Read(row.text)), row.outcome) << row.text;
}

constexpr const char* RANGE = "Store should be between 1 and 15";

TEST(KeywordLines, FileNamesAWholePlaceOnTheEeprom) {
    Check({
        {"file=bt\nu8=1", "[1/15/1 1 u8=u8:1]"},
        {"file=BT3\nu8=1", "[1/15/3 1 u8=u8:1]"},
        {"  FILE\t= Cur2 # c\nu8=1", "[0/15/2 1 u8=u8:1]"},
        {"file=bt+3\nu8=1", "[1/15/3 1 u8=u8:1]"},
        {"file=b\\\nt\\\n1\\\n5\nu8=1", "[1/15/15 1 u8=u8:1]"},
        {"file=bt0", std::string("! 1:9 #17 Store out of range ") + RANGE},
        {"file=bt16", std::string("! 1:10 #17 Store out of range ") + RANGE},
        {"file=bt0x2", std::string("! 1:9 #17 Store out of range ") + RANGE},
        {"file=bt-1", "! 1:8 #33 An unsigned number was expected"},
        {"file=bt65536", "! 1:12 #31 Number too large"},
        {"file bt\nfile=bt", "[1/15/1] ! 1:6 #3 Delimiter missing"},
        {"file=bt 3\nu8=1",
         "[1/15/1 1 u8=u8:1] ! 2:1 #4 Unexpected text  unexpected text '3' at end of line"},
    });
}

TEST(KeywordLines, UnknownSubsystemsEndThePass) {
    const std::string valid = " is not a valid subsystem. Valid subsystems are: curator, bt, audio, gnss";
    Check({
        {"file=xyz\nfile=bt\nu8=1", "! 1:9 #12 Unknown subsystem xyz" + valid},
        {"file=\nfile=bt", "! 1:6 #12 Unknown subsystem " + valid},
        {"file=gnss\nfile=bt", "! 1:10 #12 Unknown subsystem gnss" + valid},
        {"subsystem=xyz\nfile=bt", "! 1:14 #12 Unknown subsystem"},
        {"u8=1\nfile=bt\nu8=1", "! 1:1 #12 Unknown subsystem"},
    });
}

TEST(KeywordLines, ThreeLinesNameAPlaceAndSingleOnesMoveOn) {
    Check({
        {"subsystem=bt\ndevice=otp\nstore=0x0002\nu8=1", "[1/1/2 1 u8=u8:1]"},
        {"subsystem=bt\nSTORE = 2\n  device = OTP\nu8=1", "[1/1/2 1 u8=u8:1]"},
        {"subsystem=cur\ndevice=mtp\nstore=1\nu8=1\nstore=2\nu8=2\ndevice=smem\nu8=3",
         "[0/4/1 1 u8=u8:1] [0/4/2 1 u8=u8:2] [0/2/2 1 u8=u8:3]"},
        {"file=bt3\nstore=65535\nu8=1", "[1/15/3] [1/15/65535 1 u8=u8:1]"},
        {"file=bt\nsubsystem=bt\nu8=1\ndevice=rom\nu8=1\nstore=0\nu8=1",
         "[1/15/1] [1/0/0 1 u8=u8:1] ! 3:1 #13 Unknown device | 5:1 #14 Invalid configuration store"},
        {"subsystem=bt\nstore=1\ndevice=cur_cfg\ndevice=fw_cfg", "[1/13/1] [1/14/1]"},
    });
}

TEST(KeywordLines, StoresAreNumbersOf16Bits) {
    const std::string place = "subsystem=bt\ndevice=eeprom\n";
    Check({
        {place + "store=0x10", "[1/15/16]"},
        {place + "store=16", "[1/15/16]"},
        {place + "store=0X1000f", "[1/15/15]"},
        {place + "store=0x10000", "[1/15/0]"},
        {place + "store=65536", "! 3:11 #31 Number too large"},
        {place + "store=-1", "! 3:7 #33 An unsigned number was expected"},
        {place + "store=", "! 3:7 #32 Number expected"},
        {place + "store=0xZZ", "[1/15/0] ! 3:11 #4 Unexpected text  unexpected text 'ZZ' at end of line"},
    });
}

TEST(KeywordLines, KeywordsAreWholeWordsAndHideKeys) {
    Check({
        {"file=bt\nstore1 = 5", "[1/15/1 4669 store1=u8:5]"},
        {"file=bt\n4668 = 5", "[1/15/1 4668 store=u8:5]"},
        {"file=bt\nstore .5", "[1/15/1] ! 2:7 #3 Delimiter missing"},
        {"file=bt\nstore.5", "[1/15/1] ! 2:6 #3 Delimiter missing"},
        {"file=bt\nstore", "[1/15/1] ! 2:6 #3 Delimiter missing"},
        {"file=bt\ndevice otp", "[1/15/1] ! 2:8 #3 Delimiter missing"},
        {"subsystem bt", "! 1:11 #3 Delimiter missing"},
    });
}

TEST(KeywordLines, NoKeyLandsWhereAFailedLinePointed) {
    Check({
        {"file=bt\nfile=bt99\nu8=1\nu8=2\nfile=bt2\nu8=3",
         "[1/15/1] [1/15/2 1 u8=u8:3] ! 2:10 #17 Store out of range Store should be between 1 and 15 | 3:1 "
         "#14 "
         "Invalid configuration store | 4:1 #14 Invalid configuration store"},
        {"file=bt\ndevice=xyz\nu8=1\nbt2.u8=1\ndevice=otp\nu8=2",
         "[1/15/1] [1/1/1 1 u8=u8:2] ! 2:11 #13 Unknown device | 3:1 #13 Unknown device | 4:1 #13 Unknown "
         "device"},
        {"file=bt\nstore=x\nu8=1\nstore=2\nu8=2",
         "[1/15/1] [1/15/2 1 u8=u8:2] ! 2:7 #32 Number expected | 3:1 #14 Invalid configuration store"},
        {"file=bt\nfile=audio99\nstore=3\nu8=1",
         "[1/15/1] [1/15/3 1 u8=u8:1] ! 2:13 #17 Store out of range Store should be between 1 and 15"},
        {"file=bt\nstore 2\nu8=1",
         "[1/15/1] ! 2:7 #3 Delimiter missing | 3:1 #14 Invalid configuration store"},
        {"file=bt\nsubsystem cur\ndevice=otp\nstore=1\nu8=1",
         "[1/15/1] ! 2:11 #3 Delimiter missing | 5:1 #12 Unknown subsystem"},
    });
}

TEST(KeywordLines, VersionIsAnyTextOnce) {
    Check({
        {"version=sys_1_0\nfile=bt", "[1/15/1]"},
        {"file=bt\nVERSION = \xFF=x\nu8=1", "[1/15/1 1 u8=u8:1]"},
        {"version=abc def\nfile=bt",
         "[1/15/1] ! 2:1 #4 Unexpected text  unexpected text 'def' at end of line"},
        {"version=\nversion=a\nversion=b\nfile=bt",
         "[1/15/1] ! 1:9 #36 No system version | 3:1 #37 System version already set"},
        {"version a\nfile=bt", "[1/15/1] ! 1:9 #3 Delimiter missing"},
    });
}

TEST(KeywordLines, PrefixNamesAPlaceForOneLine) {
    const std::string place = "file=cur\n";
    Check({
        {place + "bt3.u8 = 5\nu8 = 1", "[0/15/1 1 u8=u8:1] [1/15/3 1 u8=u8:5]"},
        {place + "BT.bt_only = 5\nbt_only = 1",
         "[0/15/1] [1/15/1 4663 bt_only=u8:5] ! 3:11 #26 Unknown name: bt_only"},
        {place + "bt=1\naudio15x = 2", "[0/15/1 4667 bt=u8:1; 4665 audio15x=u8:2]"},
        {place + "bt\\\n2.u8 = 5", "[0/15/1] [1/15/2 1 u8=u8:5]"},
        {place + "audio16 = 1\nu8=1", "[0/15/1 1 u8=u8:1] ! 2:8 #17 Store out of range"},
        {place + "audio-1 = 1", "[0/15/1] ! 2:6 #33 An unsigned number was expected"},
        {place + "gnss.u8 = 1", "[0/15/1] ! 2:6 #32 Number expected: gnss"},
        // The number of indices is that of the previous line's place.
        {place + "bt2.differs.1 = 5\nbt2.differs.1 = 5",
         "[0/15/1] [1/15/2 4664.1 differs=u8:5] ! 3:14 #25 Wrong number of indices: differs requires 0 "
         "indices"},
        {place + "bt3.u8 = 1\nstore = 7\nu8 = 2", "[0/15/1] [1/15/3 1 u8=u8:1] [1/15/7] [0/15/7 1 u8=u8:2]"},
    });
}

TEST(KeywordLines, StoresAreSortedByDeviceAndNumberedByFirstUse) {
    const struct {
        std::string text, stores;
    } rows[] = {
        {"file=bt2\nsubsystem=bt\ndevice=smem\nstore=1\ndevice=mtp\ndevice=otp\nfile=bt\n",
         "1/1#4 4/1#3 2/1#2 15/2#1 15/1#5"},
        {"file=bt2\nfile=audio2\nfile=bt2\n", "15/2#1"},
        {"subsystem=bt\ndevice=rom\nstore=1\ndevice=cur_cfg\ndevice=fw_cfg\ndevice=otp\n", "1/1#4"},
        {"file=cur\nbt3.u8=1\n", "15/1#1"},
        {"file=cur\nbt3.u8=1\nstore=5\n", "15/1#1 15/5#2"},
    };
    for (const auto& row : rows) EXPECT_EQ(Read(row.text).stores, row.stores) << row.text;
}

TEST(KeywordLines, FifteenStoresAreTheLimit) {
    const auto text = [](const std::string& device, int count) {
        std::string lines = "subsystem=bt\ndevice=" + device + "\n";
        for (int i = 1; i <= count; ++i) lines += "store=" + std::to_string(i) + "\nu8=1\n";
        return lines;
    };
    EXPECT_TRUE(Read(text("otp", 15)).good);
    EXPECT_TRUE(Read(text("rom", 20)).good) << "stores of other devices are not counted";
    const Reading reading = Read(text("otp", 16));
    EXPECT_FALSE(reading.good);
    EXPECT_EQ(reading.findings, "0:0 #0 Found 16 Configuration stores in file, only 15 are supported");
    EXPECT_EQ(reading.error,
              "0 \nFound 16 Configuration stores in file, only 15 are supported\n\n1 error found");
    EXPECT_NE(reading.stores.find("1/16#16"), std::string::npos) << "all of them are known nevertheless";
}

TEST(KeywordLines, AliasesWorkInBothDirections) {
    CKesContext context;
    CParseContext pass;
    pass.mpConfigContext = &context;
    pass.mpProvider = &TextKeys();
    CKesParser parser(nullptr, &pass);
    EXPECT_EQ(parser.FindAlias(context, "curator"), "cur");
    EXPECT_EQ(parser.FindAlias(context, "bt"), "bt");
    EXPECT_EQ(parser.FindAlias(context, "Curator"), "Curator");
}

}  // namespace
