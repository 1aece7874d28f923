// A whole read: its reports, the calls it makes, and the texts it accepts.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "support/TextReading.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace {

using namespace KesTest;

TEST(ReadPass, MessagesListAllErrors) {
    const std::string one = "file=bt\nu8 = 5 6\n";
    const std::string two = one + "rf_gian = 1\n";
    const std::string line3 = "line 3, column 1: Unexpected text  unexpected text '6' at end of line";
    EXPECT_EQ(Read(one).error, "0 \n" + line3 + "\n\n1 error found");
    const std::string both =
        "0 \n\n" + line3 + "\nline 3, column 11: Unknown name: rf_gian\n\n2 errors found";
    EXPECT_EQ(Read(two).error, both);
    EXPECT_FALSE(Read(two).good);

    Messages::Handler().SetParagraphString(" / ");
    const std::string slashed = Read(one).error;
    Messages::Handler().SetParagraphString("\n");
    EXPECT_EQ(slashed, "0  / " + line3 + " /  / 1 error found");
}

TEST(ReadPass, ReportsProgressRegularly) {
    struct Watcher final : CMessageHandlerObserver {
        Watcher() { CTheMsgHnd::AddObserver(*this); }
        ~Watcher() override { CTheMsgHnd::RemoveObserver(*this); }
        void OnProgress(std::uint64_t bytes) override { seen.push_back(bytes); }
        std::vector<std::uint64_t> seen;
    } watcher;
    constexpr std::size_t MIB = std::size_t{1} << 20U;
    std::string text = "file=bt\n";
    while (text.size() < 3 * MIB + 100) text += "u8 = 1\nnobody = 1 # with its comment\n";
    Read(text);
    ASSERT_EQ(watcher.seen.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_GE(watcher.seen[i], (i + 1) * MIB);
        EXPECT_LT(watcher.seen[i], (i + 1) * MIB + 200);
    }
}

TEST(ReadPass, ATextWithoutKeysIsReportedButNotAnError) {
    const struct {
        std::string text;
        bool good;
        std::string statuses, error;
    } rows[] = {
        {"", true, "2 No configuration data found\n", ""},
        {"# c\n\n \t/* d", true, "2 No configuration data found\n", ""},
        {"file=bt\n", true, "2 No configuration data found\n", ""},
        {"file=bt\nu8 = x", false, "2 No configuration data found\n",
         "0 \nline 2, column 6: Number expected: u8\n\n1 error found"},
        {"file=bt\nu8 = 1", true, "", ""},
        {"file=bt\nu8 =", true, "", ""},
        {"u8 = 1\n", false, "", "0 \nline 1, column 1: Unknown subsystem\n\n1 error found"},
    };
    for (const auto& row : rows) {
        const Reading reading = Read(row.text);
        EXPECT_EQ(reading.good, row.good) << row.text;
        EXPECT_EQ(reading.statuses, row.statuses) << row.text;
        EXPECT_EQ(reading.error, row.error) << row.text;
    }
}

/// Records the calls of a read, with the place of each.
struct CallRecorder final : IConfigReaderObserver {
    void OnReadStarted(IConfigReader& /*reader*/, IConfigContext& context) override {
        Note("start", context);
    }
    void OnSubsystemFound(IConfigReader& reader, IConfigContext& context) override {
        Note("found", context);
        calls += "#" + context.GetTag(STR_ORDER);
        reader.SetElementObserver(&place);
    }
    void OnSubsystemCompleted(IConfigReader& /*reader*/, IConfigContext& context) override {
        Note("completed", context);
    }
    void OnReadEnded(IConfigReader& reader, IConfigContext& context) override {
        Note("end", context);
        calls += " " + DumpStores(dynamic_cast<IStoreManager&>(reader).GetStoresInfo(context));
    }
    void Note(const char* call, const IConfigContext& context) {
        calls += calls.empty() ? "" : " ";
        calls += std::string(call) + ":" + context.GetTag(STR_SUBSYSTEM_TYPE) + "/" +
                 context.GetTag(STR_DEVICE) + "/" + context.GetTag(STR_STORE);
    }
    CSubsystemConfig place{CKesContext()};
    std::string calls;
};

TEST(ReadPass, ObserversSeeEachPlaceAndEachKey) {
    const Messages messages;
    std::istringstream stream("subsystem=bt\ndevice=otp\nstore=2\nu8=1\nu8=2\ncur3.u8=1\nx=1\nfile=audio");
    CKesConfigReader reader(&stream);
    CallRecorder recorder;
    reader.SetObserver(&recorder);
    reader.SetElementObserver(&recorder.place);  // outside a read, which does nothing
    reader.SetMetadataProvider(&TextKeys());
    CKesContext context = OverwriteContext();
    const std::uint32_t loadsBefore = TextKeys().loads;
    EXPECT_FALSE(reader.Read(context));
    EXPECT_EQ(TextKeys().loads - loadsBefore, 6U) << "the provider is told of each place";
    EXPECT_EQ(
        recorder.calls,
        "start:// found:1/1/2#1 found:1/1/2#1 found:1/1/2#1 found:0/15/3#1 found:1/1/2#1 found:3/15/1#2 "
        "end:3/15/1 1/2#1 15/1#2");
    EXPECT_EQ(DumpElements(recorder.place), "1 u8=u8:1");
}

TEST(ReadPass, ASecondPassStartsFromNothing) {
    const Messages messages;
    std::stringstream stream("version=a\nfile=bt2\nu8=1");
    CKesConfigReader reader(&stream);
    CChipConfig config;
    reader.SetObserver(&config);
    reader.SetMetadataProvider(&TextKeys());
    CKesContext context = OverwriteContext();
    EXPECT_TRUE(reader.Read(context));
    stream.clear();
    stream.str("version=b\nfile=audio\nu8=2");
    CKesContext fresh = OverwriteContext();
    EXPECT_TRUE(reader.Read(fresh));
    EXPECT_EQ(DumpStores(reader.GetStoresInfo(fresh)), "15/1#1");
    EXPECT_EQ(DumpStores(config.Stores()), "15/1#1 15/2#1");
    EXPECT_EQ(Dump(config), "[1/15/2 1 u8=u8:1] [3/15/1 1 u8=u8:2]");
    EXPECT_EQ(messages.findings, "");
}

TEST(ReadPass, FilesAreReadAsTheyAre) {
    const Messages messages;
    const std::string name = std::string(KES_TEST_BINARY_DIR) + "/read_pass_test.ktf";
    CKesConfigReader reader(name);
    CallRecorder recorder;
    reader.SetObserver(&recorder);
    reader.SetMetadataProvider(&TextKeys());
    CKesContext context = OverwriteContext();
    std::remove(name.c_str());
    EXPECT_FALSE(reader.Read(context));
    EXPECT_EQ(Messages::LastError(), "0 Cannot open " + name);
    EXPECT_EQ(recorder.calls, "");
    for (const char* text : {"file=bt\r\nu8 = 1\r\n", "file=bt\ru8 = 2\x1A\r"}) {
        std::ofstream(name, std::ios::binary) << text;
        reader.Read(context);
    }
    EXPECT_EQ(messages.findings, "3:1 #4 Unexpected text  unexpected text '\x1A' at end of line");
    EXPECT_EQ(DumpElements(recorder.place), "1 u8=u8:2");
    std::remove(name.c_str());
    CKesConfigReader folder(std::string(KES_TEST_BINARY_DIR));
    EXPECT_FALSE(folder.Read(context));
    EXPECT_EQ(Messages::LastError(), std::string("0 Cannot open ") + KES_TEST_BINARY_DIR);
}

TEST(ReadPass, AWholeFileOfTheUsualForm) {
    MemoryProvider provider;
    provider.AddSubsystem("curator");
    provider.AddSubsystem("bt");
    provider.Key(4660, "rf_gain", "uint8").Range(0, 255).In(SUBSYSTEM_CURATOR);
    provider.Key(1, "rf_offset", "int8").Indexes(1);
    provider.Key(2, "rf_channels", "uint16").Range(0, 1000).Array(1, 8);
    provider.Key(3, "dev_name", "octet_string").Format("unicode_string").Range(0, 32);
    provider.Key(4, "bd_addr", "octet_string").Format("mac_addr").Range(6, 6);
    provider.Key(5, "blob", "octet_string").Range(0, 16);
    provider.Key(6, "mode", "MODE").Enum({{"MODE_SLOW", 0}, {"MODE_FAST", 1}});
    const Record& retries = provider.Field("retries", "uint8").Range(0, 9);
    const Record& policy = provider.Field("policy", "POLICY").Enum({{"POLICY_A", 7}});
    const Record& slots = provider.Field("slots", "uint8").Range(0, 9).Array(2, 2);
    provider.Key(7, "link_cfg", "LINK").Struct({{&retries, 8}, {&policy, 8}, {&slots, 16}});
    const std::string text = R"(version=sys_1_0

##############################
subsystem=curator
device=otp
store=0x0002

# Gain of the receiver
rf_gain = 0x05
rf_offset.2 = -4
rf_channels = {1, 2, 300}
dev_name = "ab\"c\n"
bd_addr = 00:02:5B:01:AB:CD
blob = [ 01 FF 10 ]
mode = MODE_FAST
link_cfg =  \
{ \
   0x03 /* retries */ , \
   POLICY_A /* policy */ , \
    {0x01 /* slots */ , \
   0x02 /* slots */ } \
}

##############################
file=bt3

4660 = % 0x1234 0x34 %
)";
    std::string crlf;
    for (const char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    for (const std::string& form : {text, crlf}) {
        const Reading reading = Read(form, provider);
        EXPECT_TRUE(reading.good) << reading.error;
        EXPECT_EQ(reading.stores, "1/2#1 15/3#2");
        EXPECT_EQ(reading.dump,
                  "[0/1/2 4660 rf_gain=u8:5; 1.2 rf_offset=i8:-4; 2 rf_channels=u16:1 u16:2 u16:300; "
                  "3 dev_name=\"ab\"c<0A>\"; 4 bd_addr=\"<00><02>[<01><AB><CD>\"; 5 blob=\"<01><FF><10>\"; "
                  "6 mode=MODE_FAST(1); 7 link_cfg=struct{u8:3,POLICY_A(7),u8{u8:1,u8:2}}] "
                  "[1/15/3 4660=u16:4660 u16:52]");
    }
}

TEST(ReadPass, EveryCodeHasItsText) {
    std::set<std::string> texts;
    for (std::int32_t code = PE_VALUE_NOT_SUPPORTED; code < PE_END_OF_DATA; ++code) {
        const std::string text(ParserErrorText(code));
        EXPECT_FALSE(text.empty()) << code;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), 38U) << "two of the codes share their words";
    EXPECT_EQ(ParserErrorText(PE_NO_KEY_NUMBER), ParserErrorText(PE_UNKNOWN_NAME));
    for (const std::int32_t code : {PE_NONE, PE_END_OF_DATA}) EXPECT_EQ(ParserErrorText(code), "");
    for (const std::int32_t code : {-1, 41, INT32_MIN}) EXPECT_EQ(ParserErrorText(code), "Unknown error");
}

TEST(ReadPass, LargeTextsTakeTimeInProportion) {
    constexpr std::size_t MANY = 50'000;
    const auto repeat = [](const std::string& piece) {
        std::string text;
        text.reserve(piece.size() * MANY);
        for (std::size_t i = 0; i < MANY; ++i) text += piece;
        return text;
    };
    // Character work that grows with the square of these runs into the time limit of the tests.
    const struct {
        std::string before, piece, behind, outcome;
    } rows[] = {
        {"", "# c\n", "u8 = 1", "1 u8=u8:1"},
        {"", "/* c */ ", "u8 = 1", "1 u8=u8:1"},
        {"", "/* c # \\ x\n */\n", "u8 = 1", "1 u8=u8:1"},
        {"u8 = 1 /* ", "/* # \n", "", "1 u8=u8:1"},
        {"u8 = ", "\\\n", "1", "1 u8=u8:1"},
        {"u8 = 1 # ", "c\\\n", "", "1 u8=u8:1"},
        {"u8 = ", "0", "1", "1 u8=u8:1"},
        {"two = {1", ", 1", "}", "! 2:150010 #38 Wrong array length: two must have 2 items. 50001 found."},
        {"u8 = x ", "\\/", "\nu8 = 1", "1 u8=u8:1 ! 2:6 #32 Number expected: u8"},
        {"u8 = 1\n", "u16 = 5 # \\ c\n", "", "1 u8=u8:1; 2 u16=u16:5"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(OutcomeInAudio(row.before + repeat(row.piece) + row.behind), row.outcome) << row.piece;
    }
    const Reading reading = Read("file=bt\n" + repeat("u8 = x\n"));
    const std::string end = "\nline 50001, column 6: Number expected: u8\n\n50000 errors found";
    EXPECT_EQ(reading.error.substr(reading.error.size() - end.size()), end);
}

}  // namespace
