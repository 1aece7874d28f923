// The positions of lines, keys and values in a text, and the effect of changing single keys.

#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "support/EditLaw.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace KesTest;

CTextIndex IndexOf(const std::string& text) {
    const Messages messages;
    return {text, TextKeys(), "sys_1_0"};
}

/// Each line as `KEY=VALUE@PLACE`, "-" for lines without effect, "!" and a code for errors.
std::string Show(const CTextIndex& index) {
    std::string shown;
    for (const TextLine& line : index.Lines()) {
        if (!shown.empty()) shown += " | ";
        if (line.error != 0) shown += "!" + std::to_string(line.error) + " ";
        if (line.effect == TextLine::Effect::None) {
            shown += "-";
            continue;
        }
        shown += std::string(index.Piece(line.key)) + "=" + std::string(index.Piece(line.value)) + "@" +
                 std::to_string(line.place.subsystem) + "/" + std::to_string(line.place.device) + "/" +
                 std::to_string(line.place.store);
    }
    return shown;
}

TEST(TextIndex, RecordsThePositionsOfLinesKeysAndValues) {
    const struct {
        const char* what;
        std::string text;
        std::string shown;
    } rows[] = {
        {"nothing", "", ""},
        {"comments alone", "# a\n/* b\n */\n\n", ""},
        {"keywords", "version=a\nsubsystem=bt\ndevice=otp\nstore=3\nu8 = 1\n", "- | - | - | - | u8=1@1/1/3"},
        {"blanks and comments", "file=bt2\n  u8 /*x*/ = /* y */ 1 /* z */ # w\n", "- | u8=1@1/15/2"},
        {"a comment straight before", "file=bt1\n/*a*/u8=/*b*/1/*c*/\n", "- | u8=1@1/15/1"},
        {"continuation", "file=bt1\nwords = \\\n {1, \\\n /* two */ 2}\\\n\nu8=2",
         "- | words={1, \\\n /* two */ 2}@1/15/1 | u8=2@1/15/1"},
        {"other line ends", "file=bt1\r\nu8=1\r\ru16 = 2\ru32=3\n",
         "- | u8=1@1/15/1 | u16=2@1/15/1 | u32=3@1/15/1"},
        {"quotes", "file=bt1\ndev_name = \"a # \\\"/*\"  # b\n", "- | dev_name=\"a # \\\"/*\"@1/15/1"},
        {"prefix", "file=bt1\nu8=1\naudio3.u8=2\nu8=3\n", "- | u8=1@1/15/1 | u8=2@3/15/3 | u8=3@1/15/1"},
        {"empty value", "file=bt1\nu8 =  # none\n", "- | u8=@1/15/1"},
        {"raw and unknown", "file=audio1\n77 = % 1 [ 02 ] %\n78.1=% 1 %",
         "- | 77=% 1 [ 02 ] %@3/15/1 | 78.1=% 1 %@3/15/1"},
        {"mistakes", "file=bt1\nu8 = 1 2\nu8 = x\nnobody = 1\nu8=4\n",
         "- | !4 u8=1 2@1/15/1 | !32 u8=x@1/15/1 | !26 - | u8=4@1/15/1"},
        {"table keys", "file=bt1\nrf_table.0.2 = -1\n4661.1.1=2",
         "- | rf_table.0.2=-1@1/15/1 | 4661.1.1=2@1/15/1"},
        {"the reading ends early", "file=bt1\nu8=1\nfile=nowhere1\nu8=2\n", "- | u8=1@1/15/1 | !12 -"},
    };
    for (const auto& row : rows) EXPECT_EQ(Show(IndexOf(row.text)), row.shown) << row.what;
}

TextChange Change(const std::string& key, std::uint32_t psid, const std::string& value,
                  TextPlace place = {1, 15, 1}) {
    TextChange change;
    change.place = place;
    change.psid = psid;
    change.key = key;
    change.value = value;
    change.isRemoval = value.empty();
    change.subsystemWord = "bt";
    change.deviceWord = place.device == 15 ? "" : "smem";
    return change;
}

TEST(TextEdit, ChangesTheCharactersOfTheValueAndNothingElse) {
    const TextPlace smem{1, 2, 5};
    const struct {
        const char* what;
        std::string text;
        std::vector<TextChange> changes;
        std::string edited;
    } rows[] = {
        {"value",
         "file=bt1\r\n\tu8\t=  1  # one\r\n# end",
         {Change("u8", 1, "7")},
         "file=bt1\r\n\tu8\t=  7  # one\r\n# end"},
        {"value over lines",
         "file=bt1\nwords = {1, /* a */ \\\n   2} /* b */\nu8=1\n",
         {Change("words", 19, "{3}")},
         "file=bt1\nwords = {3} /* b */\nu8=1\n"},
        {"the line that counts",
         "file=bt1\nu8=1\nu8=2\nu16=3\n",
         {Change("u8", 1, "7")},
         "file=bt1\nu8=1\nu8=7\nu16=3\n"},
        {"new key behind the last",
         "file=bt1\n  u8 = 1 # a\nfile=audio1\nu8=2\n",
         {Change("u16", 2, "7")},
         "file=bt1\n  u8 = 1 # a\n  u16 = 7\nfile=audio1\nu8=2\n"},
        {"new key in the style of the last",
         "file=bt1\r\nu8=1\r\n",
         {Change("u16", 2, "7"), Change("u32", 3, "8")},
         "file=bt1\r\nu8=1\r\nu16=7\r\nu32=8\r\n"},
        {"last line without an end", "file=bt1\nu8=1", {Change("u16", 2, "7")}, "file=bt1\nu8=1\nu16=7"},
        {"last line ends in a backslash",
         "file=bt1\nu8=1\\",
         {Change("u16", 2, "7")},
         "file=bt1\nu8=1\\\n\nu16=7"},
        {"last key has a prefix",
         "file=audio1\n bt.u8=1\nu8=2\n",
         {Change("u16", 2, "7")},
         "file=audio1\n bt.u8=1\n bt.u16=7\nu8=2\n"},
        {"place without keys",
         "file=bt1\nfile=audio1\nu8=2\n",
         {Change("u16", 2, "7")},
         "file=bt1\nu16 = 7\nfile=audio1\nu8=2\n"},
        {"new place",
         "file=audio1\nu8=2",
         {Change("u16", 2, "7"), Change("u8", 1, "6")},
         "file=audio1\nu8=2\n\nfile = bt1\nu16 = 7\nu8 = 6\n"},
        {"new places",
         "version=a\r\n",
         {Change("u16", 2, "7", smem), Change("u8", 1, "6")},
         "version=a\r\n\r\nsubsystem = bt\r\ndevice = smem\r\nstore = 5\r\nu16 = 7\r\n\r\nfile = bt1\r\nu8 = "
         "6\r\n"},
        {"an empty text", "", {Change("u8", 1, "6")}, "file = bt1\nu8 = 6\n"},
        {"set again after its removal",
         "file=bt1\nu8=1\nu8=\nu16=3\n",
         {Change("u8", 1, "7")},
         "file=bt1\nu8=1\nu8=\nu16=3\nu8=7\n"},
        {"removal", "file=bt1\n  u8 = 1 # one\nu16=3\n", {Change("u8", 1, "")}, "file=bt1\nu16=3\n"},
        {"removal of repeated lines",
         "file=bt1\nu8=1\nu16=3\nu8=2 /* a\n b */\n# end\n",
         {Change("u8", 1, "")},
         "file=bt1\nu16=3\n# end\n"},
        {"removal behind a comment",
         "file=bt1\r\n/* head\r\n */ u8=1 # one\r\nu16=3\r\n",
         {Change("u8", 1, "")},
         "file=bt1\r\n/* head\r\n */ \r\nu16=3\r\n"},
        {"removal of the last line", "file=bt1\nu16=3\nu8=1", {Change("u8", 1, "")}, "file=bt1\nu16=3\n"},
        {"one removed, one added",
         "file=bt1\nu16=3\nu8=1\n",
         {Change("u8", 1, ""), Change("u32", 3, "4")},
         "file=bt1\nu16=3\nu32=4\n"},
        {"text behind the value",
         "file=bt1\nu8=1 2 /*a*/ 3 # b\n",
         {Change("u8", 1, "4")},
         "file=bt1\nu8=4 # b\n"},
        {"a value that was refused",
         "file=bt1\nu8 = x # a\nu16=2\n",
         {Change("u8", 1, "4")},
         "file=bt1\nu8 = 4 # a\nu16=2\n"},
        {"a refused value that a good one follows",
         "file=bt1\nu8=x\nu8=1\n",
         {Change("u8", 1, "4")},
         "file=bt1\nu8=x\nu8=4\n"},
    };
    for (const auto& row : rows) EXPECT_EQ(EditText(IndexOf(row.text), row.changes), row.edited) << row.what;
}

TEST(TextEdit, ItsPropertiesHoldForEveryKeyOfTheExamples) {
    CMetadataProviderFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
    CReaderWriterFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
    const std::unique_ptr<IMetadataProvider> provider(CMetadataProviderFactory::Ref().Create(
        "sqlite", std::string(KES_TEST_SHARE_DIR) + "/examples/ostrell.db"));
    ASSERT_NE(provider, nullptr);
    std::size_t tried = 0;
    const std::string folder = std::string(KES_TEST_SOURCE_DIR) + "/examples/ostrell";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".ktf") continue;
        const std::string unix = ReadFile(entry.path().string());
        const std::size_t label = unix.find("version");
        const std::size_t from = unix.find_first_not_of(" =", unix.find('=', label));
        const std::string chip = unix.substr(from, unix.find('\n', from) - from);
        std::string dos;
        for (const char c : unix) dos.append(c == '\n' ? "\r\n" : std::string(1, c));
        for (const std::string& text : {unix, dos}) {
            EditLaw law(text, *provider, chip,
                        [&](const std::string& what, const std::string& edited, const std::string& wanted,
                            const std::string& actual) {
                            ADD_FAILURE() << entry.path() << ": " << what << "\n"
                                          << edited << "\nwanted " << wanted << "\nactual " << actual;
                        });
            law.Check(&text == &dos ? 7 : 1);
            tried += law.tried;
        }
    }
    EXPECT_GT(tried, 500U);
}

}  // namespace
