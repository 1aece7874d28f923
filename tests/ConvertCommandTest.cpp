// `kes convert`: every kind of configuration holds what every other one does, and nothing bad gets through.

#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace KesTest;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::vector<std::string> GoodExamples() {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_FOLDER)) {
        const std::string path = entry.path().string();
        if (path.ends_with(".ktf") && !Holds(path, "with-mistakes")) paths.push_back(path);
    }
    return paths;
}

/// A line of the shell and what it answers.
struct Row {
    std::string line;
    int code = 0;
    std::string message = {};  ///< words of standard error; empty when that must be empty
};

void Check(const TempFolder& folder, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const Outcome outcome = RunShell(folder, row.line);
        EXPECT_EQ(outcome.code, row.code) << row.line << "\n" << outcome.out << outcome.err;
        EXPECT_TRUE(row.message.empty() ? outcome.err.empty() : Holds(outcome.err, row.message))
            << row.line << "\n"
            << outcome.err;
    }
}

TEST(Convert, EveryKindHoldsEveryExample) {
    for (const std::string& text : GoodExamples()) {
        const TempFolder folder;
        Check(folder, {{"kes convert '" + text + "' chunks/ && kes diff '" + text + "' chunks"}});
        std::string from = "chunks/";
        for (const std::string family : {"eeprom", "isp", "kld"}) {
            const std::string device = family + ":" + family;
            Check(folder, {{"kes device create " + device + " --size 128K"},
                           {"kes convert " + from + " " + device},
                           {"kes convert " + device + " out.ktf && kes diff '" + text + "' out.ktf"}});
            from = device;
        }
        Check(folder, {{"kes rewrite --check out.ktf"},
                       {"kes convert --simple kld:kld - | kes diff kld:kld -"},
                       {"kes convert kld:kld again/ && kes diff '" + text + "' again/"},
                       {"kes check again chunks " + from}});
    }
}

const std::string SMALL = "version=ostrell_520_2_3\nfile=bt1\nmax_acl_links=3\nfile=wlan1\nantenna_gain=2\n";

TEST(Convert, RefusesWhatIsWrongAndWritesNothing) {
    const TempFolder folder;
    folder.Write("good", SMALL);
    folder.Write("wrong", "file=bt1\nmax_acl_links=3\nnobody=1\n");
    folder.Write("huge", "file=bt1\n4480=% [" + std::string(6000, 'A') + "] %\n");
    std::filesystem::create_directory(folder / "none");
    std::filesystem::create_directory(folder / "damaged");
    folder.Write("damaged/bt-eeprom-0001.kcf", "no chunk file");
    Check(folder, {{"kes device create eeprom:e --size 2K && kes device create isp:i --size 4K"},
                   {"kes convert good eeprom:e"},
                   {"kes convert wrong new", 1, "wrong:3:8: error: Unknown name: nobody"},
                   {"kes convert wrong new/", 1, "Unknown name: nobody"},
                   {"kes convert wrong eeprom:e", 1, "Unknown name: nobody"},
                   {"kes convert none new", 1, "none: error: Folder does not contain readable *.kcf files"},
                   {"kes convert damaged new", 1, "bt-eeprom-0001.kcf"},
                   {"kes convert huge eeprom:e", 3, "store eeprom has room for"},
                   {"kes convert isp:e new", 1, "is an image of the family eeprom, not isp"},
                   {"kes convert good kld:e", 1, "is an image of the family eeprom, not kld"},
                   {"kes convert missing new", 3, "kes: missing: cannot be opened"},
                   {"kes convert missing/ new", 3, "kes: missing/: cannot be opened"},
                   {"kes convert eeprom:missing new", 3, "eeprom:missing: error: unable to open the file"},
                   {"kes convert good eeprom:missing", 3, "eeprom:missing: error: unable to open the file"},
                   {"kes convert good no/such/folder/", 3, "unable to open the file"},
                   {"kes convert good none/new/text", 3, "none/new/text"},
                   {"kes convert good eeprom:", 2, "\"eeprom:\" names nothing"},
                   {"kes convert good eeprom:e?x=1", 1, "eeprom:e?x=1: error: invalid operation"},
                   {"kes convert good eeprom:e --reset", 2, "--reset is for TO isp:"},
                   {"kes convert good isp:i --merge", 2, "--merge is for TO kld:"},
                   {"kes convert good new --store-set fw_cfg", 2, "--store-set is for FROM isp:"},
                   {"kes convert good new/ --simple", 2, "--simple is for a text"},
                   {"kes convert isp:i new --store-set some", 2, "some"},
                   {"kes convert good new/ --plugins .", 3, "no plug-in \"sqlite\""},
                   {"kes convert good - >/dev/full", 3, "standard output"},
                   {"kes diff good eeprom:e"}});
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

TEST(Convert, LeavesOfTheTargetWhatItIsToLeave) {
    const TempFolder folder;
    const auto at = [](const std::string& device, const std::string& key) {
        return "version=ostrell_520_2_3\nsubsystem=bt\ndevice=" + device + "\nstore=1\n" + key + "\n";
    };
    folder.Write("small", SMALL);
    folder.Write("firmware", at("fw_cfg", "max_acl_links=5"));
    folder.Write("own", at("eeprom", "max_sco_links=1"));
    folder.Write("otp", at("otp", "max_acl_links=1"));
    folder.Write("other", "version=ostrell_520_2_3\nfile=bt1\nmax_acl_links=5\nmax_sco_links=2\n");
    Check(
        folder,
        {{"kes convert small chunks/ && touch chunks/mine && kes convert own chunks/ && test -e chunks/mine"},
         {"kes diff own chunks/ # no file of the first is left"},
         {"kes device create isp:i --size 8K && kes convert small isp:i && kes convert firmware isp:i"},
         {"kes convert own isp:i --reset -v", 0, "isp:i: 1 key in 1 place of ostrell_520_2_3 written"},
         {"kes device info isp:i | grep -q 'resets asked for 1$'"},
         {"kes convert isp:i set --store-set fw_cfg && kes diff set firmware"},
         {"kes convert isp:i set --store-set dev_cfg && kes diff set own"},
         {"kes convert isp:i set --store-set cur_cfg && test \"$(kes list set 2>/dev/null)\" = ''"},
         {"kes device create kld:k --size 16K && kes convert small kld:k && kes convert other kld:k --merge"},
         {"test $(kes get kld:k max_acl_links) = 5 && test $(kes get kld:k antenna_gain) = 2"},
         {"kes convert other kld:k && kes diff other kld:k"},
         {"kes convert otp kld:k --merge"},
         {"kes convert other kld:k", 1, "one-time-programmable"},
         {"test $(kes get kld:k max_acl_links --device otp) = 1"}});
}

}  // namespace
