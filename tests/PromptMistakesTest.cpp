// What somebody gets wrong at a prompt, and the help that the message gives.

#include "support/Files.h"

#include <gtest/gtest.h>

using KesTest::Outcome;
using KesTest::ReadFile;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

constexpr const char* TEXT = "version = ostrell_520_2_3\nfile = bt1\nmax_acl_links = 3\n";

TEST(PromptMistakes, MessagesSayWhatWasMeant) {
    const TempFolder folder;
    const std::string file = folder.Write("a.ktf", TEXT);
    const std::string blanks = "write KEY VALUE, KEY=VALUE or KEY = VALUE, not max_acl_links";
    const std::vector<std::string> place = {"--device", "smem", "--store", "1"};
    struct Case {
        std::vector<std::string> words;
        int code;
        std::string help;
    };
    const std::vector<Case> cases = {
        {{"set", file, "local_name", "Blue box"}, 1, "away; write local_name='\"Blue box\"'\n"},
        {{"set", file, "max_acl_links=", "4"}, 2, blanks + "= 4\n"},
        {{"set", file, "max_acl_links", "=4"}, 2, blanks + " =4\n"},
        {{"set", file, "max_acl_links", "4", "--dryrun"}, 2, "\"--dryrun\", did you mean --dry-run?\n"},
        {{"list", file, "--changd=1"}, 2, "unknown option \"--changd\", did you mean --changed?\n"},
        {{"set", file, "--subsystem", "bluetoth", "0x9999", "[1]"}, 2, "did you mean bluetooth?\n"},
        {{"set", folder / "new.ktf", "max_acl_links", "4"}, 3, "no such file; --create begins a new text\n"},
        {{"set", file, "mac_address", "00:11:22:33:44:55"}, 2, "as in --device smem --store 1\n"},
        {{"set", file, "0x7FFE", "1"}, 1, "takes a raw value, as in % 0x1234 [01 02] %\n"},
        {{"get", file, "zzzz"}, 1, "has no key \"zzzz\"; \"kes keys\" lists the keys\n"},
        {{"set", file, "tx_power_correction", "1"},
         1,
         "is no key of the table tx_power_correction.<channel>: channel is 0 to 78\n"},
        {{"set", file, "tx_power_correction.79", "1"}, 1, "channel is 0 to 78\n"},
        {{"hlp", "set"}, 2, "unknown command \"hlp\", did you mean help?\nsee kes --help\n"},
        {{"metadata", "buld"}, 2, "unknown command \"buld\", did you mean build?\nsee kes metadata --help\n"},
        {{"diff", file}, 2, "two configurations are compared, or one with --defaults\n"},
    };
    for (const Case& mistake : cases) {
        const Outcome outcome = RunKes(mistake.words);
        EXPECT_EQ(outcome.code, mistake.code) << outcome.err;
        EXPECT_NE(outcome.err.find(mistake.help), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(ReadFile(file), TEXT);
}

TEST(PromptMistakes, BracketsOfAValueStay) {
    const TempFolder folder;
    const std::string file = folder.Write("a.ktf", TEXT);
    const Outcome outcome = RunKes({"set", file, "eir_data", "[00 11]"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(ReadFile(file), std::string(TEXT) + "eir_data = [00 11]\n");
}

TEST(PromptMistakes, ATextBegunForAGuessedSystemSaysSo) {
    const TempFolder folder;
    std::vector<std::string> words = {"set", folder / "a.ktf", "--create", "--device", "smem", "--store",
                                      "1",   "max_acl_links",  "3"};
    const std::string begun = "begun as a text of ostrell_520_2_3, the first of the database";
    EXPECT_NE(RunKes(words).err.find(begun), std::string::npos);
    words[1] = folder / "b.ktf";
    words.insert(words.end(), {"--chip", "ostrell_524_3_0"});
    const Outcome outcome = RunKes(words);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
}

}  // namespace
