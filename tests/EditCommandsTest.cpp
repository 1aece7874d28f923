// The commands set, add and unset on real files: what they change, what they refuse, and where they write.

#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

using namespace KesTest;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// Lines of the shell on the file "f". Without `after` the file must stay as it is.
struct Row {
    const char* line;
    std::string before;
    std::optional<std::string> after;
    int code = 0;
    std::string message = {};  ///< words of standard error; empty when that must be empty
};
constexpr std::nullopt_t SAME = std::nullopt;

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const TempFolder folder;
        const std::string path = folder.Write("f", row.before);
        const Outcome outcome = RunShell(folder, row.line);
        EXPECT_EQ(outcome.code, row.code) << row.line << "\n" << outcome.err;
        EXPECT_EQ(ReadFile(path), row.after.value_or(row.before)) << row.line << "\n"
                                                                  << row.before << outcome.err;
        EXPECT_TRUE(row.message.empty() ? outcome.err.empty() : Holds(outcome.err, row.message))
            << row.line << "\n"
            << row.message << "\n"
            << outcome.err;
        EXPECT_EQ(outcome.out, "") << row.line;
        const auto files = std::filesystem::directory_iterator(folder.Path());
        EXPECT_EQ(std::distance(begin(files), end(files)), 1) << row.line << ": nothing else is left";
    }
}

const std::string BT = "file=bt1\n";
const std::string LINKS = "file=bt1\nmax_acl_links = 3  # few\n";
const std::string FOUR = "file=bt1\nmax_acl_links = 4  # few\n";
const std::string TWICE = "file=bt1\nmax_acl_links=2\nsubsystem=bt\ndevice=smem\nstore=4\nmax_acl_links=3\n";
const std::string RADIO = "file=bt1\nfile=wlan1\n";

TEST(Set, ChangesTheValueAndNothingElse) {
    Check({
        {"kes set f max_acl_links 4", LINKS, FOUR},
        {"kes set f max_acl_links=4", LINKS, FOUR},
        {"kes set f max_acl_links = 4", LINKS, FOUR},
        {"kes set f MAX_ACL_LINKS 4", LINKS, SAME, 1, "did you mean max_acl_links"},
        {"kes set f 0x1005 4", LINKS, FOUR},
        {"kes set f 4101 3", LINKS, SAME},
        {"kes set f front_end_loss 4 max_acl_links=5 local_name '\"a=b\"'", LINKS,
         "file=bt1\nmax_acl_links = 5  # few\nfront_end_loss = 4\nlocal_name = \"a=b\"\n"},
        {"kes set f tx_power_limit.0.1 5", "file = wlan1\r\n\ttx_power_limit.0.1\t= 4 # x\r\n# end",
         "file = wlan1\r\n\ttx_power_limit.0.1\t= 5 # x\r\n# end"},
        {"kes set f tx_power_limit.1.0 5", "file=wlan1\ntx_power_limit.0.1=4\n",
         "file=wlan1\ntx_power_limit.0.1=4\ntx_power_limit.1.0=5\n"},
        {"kes set f antenna_gain 5", "file=bt1\n wlan2.antenna_gain =4\nmax_acl_links=1\n",
         "file=bt1\n wlan2.antenna_gain =5\nmax_acl_links=1\n"},
        {"kes set f rx_gain_table '{1, 2, 3, 4}'",
         "file=bt1\nrx_gain_table = {0x1, /* a */ \\\n 2, 3, 4} # b\n",
         "file=bt1\nrx_gain_table = {1, 2, 3, 4} # b\n"},
        {"kes set f max_acl_links 4", LINKS + "file=wlan1\nfile=bt1\nmax_acl_links=1 /*\n*/\n",
         LINKS + "file=wlan1\nfile=bt1\nmax_acl_links=4 /*\n*/\n"},
        {"kes set f max_acl_links 4", "file=bt1\nmax_acl_links=3\nmax_acl_links=\n",
         "file=bt1\nmax_acl_links=3\nmax_acl_links=\nmax_acl_links=4\n"},
        {"kes set f test_carrier_offset -4", BT, "file=bt1\ntest_carrier_offset = -4\n"},
        {"kes set -- f test_carrier_offset -4", BT, "file=bt1\ntest_carrier_offset = -4\n"},
        {"kes set f test_carrier_offset=-4", "file=bt1", "file=bt1\ntest_carrier_offset = -4"},
        {"kes set f local_name '\"\"'", "file=bt1\nlocal_name=\"a # b\"\n", "file=bt1\nlocal_name=\"\"\n"},
        {"kes set f 4480 '% 1 [ 02 ] %'", BT, "file=bt1\n4480 = % 1 [ 02 ] %\n"},
        {"kes set f 0x1181.2 '% 0x1234 %' --subsystem bluetooth", RADIO,
         "file=bt1\n0x1181.2 = % 0x1234 %\nfile=wlan1\n"},
        {"kes set f max_acl_links 4 # errors elsewhere", LINKS + "max_acl_linx = 1\n  \\\n\xFF\n",
         "file=bt1\nmax_acl_links = 4  # few\nmax_acl_linx = 1\n  \\\n\xFF\n"},
        {"kes set f max_acl_links 4 # a line that was refused",
         "file=bt1\nmax_acl_links = four  # few\nmax_sco_links=1\n",
         "file=bt1\nmax_acl_links = 4  # few\nmax_sco_links=1\n"},
        {"kes set f class_of_device 0x34FF # text behind the value", "file=bt1\nclass_of_device = 34FF\n",
         "file=bt1\nclass_of_device = 0x34FF\n"},
        {"kes set f max_acl_links 4 # the reading ends early", LINKS + "file=nowhere1\nmax_acl_links=5\n",
         "file=bt1\nmax_acl_links = 4  # few\nfile=nowhere1\nmax_acl_links=5\n"},
    });
}

TEST(Set, FindsOrMakesThePlace) {
    Check({
        {"kes set f max_acl_links 4", TWICE, SAME, 2,
         "is in 2 places; choose one with --subsystem, --device and "
         "--store:\n  bt eeprom 1: 2\n  bt smem 4: 3"},
        {"kes set f max_acl_links 4 --device SMEM", TWICE,
         "file=bt1\nmax_acl_links=2\nsubsystem=bt\ndevice=smem\nstore=4\nmax_acl_links=4\n"},
        {"kes set f max_acl_links 4 --store 0x1", TWICE,
         "file=bt1\nmax_acl_links=4\nsubsystem=bt\ndevice=smem\nstore=4\nmax_acl_links=3\n"},
        {"kes set f pin_code '\"0\"'", TWICE, SAME, 2, "pin_code could go to several places"},
        {"kes set f 44800 '% 1 %'", RADIO, SAME, 2,
         "44800 could go to several places; choose one with "
         "--subsystem, --device and --store:\n  bt eeprom 1\n  wlan"},
        {"kes set f max_connections 2", BT, SAME, 2, "f has no place of "},
        {"kes set f max_acl_links 4 --device smem", LINKS, SAME, 2, "f has no place of bt yet; say where"},
        {"kes set f max_acl_links 4 --device smen", LINKS, SAME, 2, "no device \"smen\", did you mean smem?"},
        {"kes set f max_acl_links 4 --store 70000", LINKS, SAME, 2, "\"70000\" is no store"},
        {"kes set f max_acl_links 4 --subsystem audio", LINKS, SAME, 1,
         "has no key \"max_acl_links\" in audio"},
        {"kes set f tx_power_limit.0.1 5 antenna_gain 3 --device eeprom --store 3", "file=bt1",
         "file=bt1\n\nfile = wlan3\ntx_power_limit.0.1 = 5\nantenna_gain = 3\n"},
        {"kes set f max_acl_links 4 --device smem --store 0x10", "file=wlan1\r\n",
         "file=wlan1\r\n\r\nsubsystem = bluetooth\r\ndevice = smem\r\nstore = 16\r\nmax_acl_links = 4\r\n"},
        {"kes set f max_acl_links 4 --device eeprom --store 16", "",
         "subsystem = bluetooth\ndevice = eeprom\nstore = 16\nmax_acl_links = 4\n"},
        {"kes set f max_acl_links 4 --device rom --store 0", "\n",
         "\n\nsubsystem = bluetooth\ndevice = rom\nstore = 0\nmax_acl_links = 4\n"},
        {"kes set f max_acl_links=4", "subsystem=bt\ndevice=cur_cfg\nstore=2\n",
         "subsystem=bt\ndevice=cur_cfg\nstore=2\nmax_acl_links = 4\n"},
        {"kes set f max_acl_links=9", "subsystem=bt\ndevice=fw_cfg\nstore=2\n", SAME, 1,
         "must be between 1 and 7"},
        {"kes set f 4480 5", "subsystem=bt\ndevice=fw_cfg\nstore=2\n", SAME, 1, "4480 = 5 is refused"},
    });
}

TEST(Set, RefusesAllWhenOneIsRefused) {
    Check({
        {"kes set f front_end_loss 4 max_acl_links 400", LINKS, SAME, 1,
         "f: note: max_acl_links takes 1 to 7"},
        {"kes set f front_end_loss 4 max_acl_links", LINKS, SAME, 2, "no value is given for max_acl_links"},
        {"kes set f max_acl_links 4 0x1005=5", LINKS, SAME, 2, "0x1005 is given twice"},
        {"kes set f max_acl_linx 4", LINKS, SAME, 1,
         "has no key \"max_acl_linx\", did you mean max_acl_links"},
        {"kes set f max-acl 4", LINKS, SAME, 2, "\"max-acl\" is no key: a key is a name or a number"},
        {"kes set f tx_power_limit.0 4", "file=wlan1\n", SAME, 1, "tx_power_limit.0 = 4 is refused"},
        {"kes set f 4480 5", BT, SAME, 1, "4480 = 5 is refused: Unknown name"},
        {"kes set f local_name '\"a\nb\"'", BT, SAME, 2, "the value of local_name must be one line"},
        {"kes set f local_name 'a\\'", BT, SAME, 2, "a backslash at its end joins the next"},
        {"kes set f local_name ' '", BT, SAME, 2,
         "the value of local_name is empty: \"kes unset\" takes a key out"},
        {"kes set f local_name=", BT, SAME, 2, "the value of local_name is empty"},
        {"kes set f max_acl_links '4 /* b'", LINKS + "front_end_loss=3 # */\n", SAME, 1, "opens a comment"},
        {"kes set f max_acl_links '4 /* b'", LINKS, SAME, 1, "opens a comment"},
        {"kes set f max_acl_links '4 /* b'", "subsystem=bt\ndevice=rom\nstore=1", SAME, 1, "opens a comment"},
        {"kes set f max_acl_links '4 5'", LINKS, SAME, 1, "max_acl_links = 4 5 is refused"},
    });
}

TEST(AddAndUnset, AreStrict) {
    Check({
        {"kes add f pin_code '\"0\"'", LINKS, LINKS + "pin_code = \"0\"\n"},
        {"kes add f max_acl_links 4", LINKS, SAME, 1,
         "is there already, in bt eeprom 1: 3; \"kes set\" changes it"},
        {"kes add f max_acl_links 4 --store 2 --device eeprom", LINKS,
         LINKS + "\nfile = bluetooth2\nmax_acl_links = 4\n"},
        {"kes add f pin_code '\"0\"' max_acl_links 4", LINKS, SAME, 1, "max_acl_links is there already"},
        {"kes unset f max_acl_links", LINKS + "front_end_loss=4\nmax_acl_links=5 # more\n",
         BT + "front_end_loss=4\n"},
        {"kes unset f max_acl_links", "file=bt1\r\n/* head\r\n */ max_acl_links=5 # x\r\n",
         "file=bt1\r\n/* head\r\n */ \r\n"},
        {"kes unset f max_acl_links", TWICE, SAME, 2, "is in 2 places"},
        {"kes unset f max_acl_links --store 4", TWICE, TWICE.substr(0, TWICE.size() - 16)},
        {"kes unset f max_acl_links pin_code", LINKS, SAME, 1, "f has no pin_code"},
        {"kes unset f 4480", "file=bt1\n4480=% 1 %\n4480.1=% 1 %\n", "file=bt1\n4480.1=% 1 %\n"},
        {"kes unset f max_acl_links", "subsystem=bt\ndevice=rom\nstore=1\nmax_acl_links=3",
         "subsystem=bt\ndevice=rom\nstore=1\n"},
    });
}

TEST(Edit, SaysWhatFilesDoNotAllow) {
    Check({
        {"kes set none max_acl_links 4", LINKS, SAME, 3,
         "kes: none: there is no such file; --create begins a new text"},
        {"kes set . max_acl_links 4", LINKS, SAME, 3,
         ".: error: Folder does not contain readable *.kcf files"},
        {"kes set text:. max_acl_links 4", LINKS, SAME, 3, "kes: text:.: is a directory"},
        {"kes set f max_acl_links 4 -o .", LINKS, SAME, 3, "kes: .: is a directory"},
        {"kes set f max_acl_links 4 -o none/g", LINKS, SAME, 3,
         "none/g: cannot be written: No such file or directory"},
        {"kes set none/g --create max_acl_links 4 --device otp --store 1", LINKS, SAME, 3,
         "none/g: cannot be written"},
        {"kes set g --create max_acl_links 9 --device otp --store 1", LINKS, SAME, 1,
         "must be between 1 and 7"},
        {"kes set f --create max_acl_links 4", LINKS, FOUR},
        {"mkfifo p; kes set f max_acl_links 4 -o p; code=$?; test -p p && rm p; (exit $code)", LINKS, SAME, 3,
         "p: cannot be written: no program reads from the pipe"},
        {"kes set f max_acl_links 4 --chip none", LINKS, SAME, 2, "unknown chip \"none\""},
    });
}

/// Chunk files and devices are changed as a text is, by its rules and with its words.
TEST(Edit, AllKindsAreChangedAlike) {
    const std::string text = "version=ostrell_520_2_3\n" + LINKS +
                             "front_end_loss=4\n4480=% 1 %\nfile=wlan1\ntx_power_limit.0.1=5\n"
                             "subsystem=bt\ndevice=cur_cfg\nstore=2\npage_timeout=0x1000\n";
    const struct {
        const char* line;
        int code = 0;
        const char* message = "";
    } rows[] = {
        {"kes set X max_acl_links 4 local_name '\"a # b\"' tx_power_limit.0.1=6 --device eeprom"},
        {"kes set X page_timeout 0x3000"},
        {"kes set X max_acl_links 3"},
        {"kes set X 4480 '% 1 [ 02 ] %' --subsystem bt --device eeprom"},
        {"kes add X pin_code '\"0\"' --device otp --store 2"},
        {"kes unset X tx_power_limit.0.1 page_timeout"},
        {"kes set X front_end_loss 5 max_acl_links 400", 1, "X: note: max_acl_links takes 1 to 7"},
        {"kes set X front_end_loss 5 local_name Box --device eeprom", 1,
         "X: note: the shell takes quotes away"},
        {"kes set X max_acl_links '4 /* b'", 1, "X: error: max_acl_links = 4 /* b is refused: it opens a"},
        {"kes set X page_timeout 4", 1, "X: error: page_timeout = 4 is refused"},
        {"kes set X max_acl_links 4 0x1005=5", 2, "0x1005 is given twice"},
        {"kes set X max_acl_links 5 nobody=1", 1, "has no key \"nobody\""},
        {"kes add X max_acl_links 4", 1, "X: max_acl_links is there already, in bt eeprom 1: 3"},
        {"kes unset X max_acl_links pin_code", 1, "X has no pin_code"},
        {"kes set X pin_code '\"0\"'", 2, "pin_code could go to several places"},
        {"kes set X max_acl_links 4 -n"},
    };
    const TempFolder folder;
    folder.Write("before.f", text);
    ASSERT_EQ(RunShell(folder,
                       "kes convert before.f before.c/ && kes device create kld:before.k --size 32K && "
                       "kes convert before.f kld:before.k")
                  .code,
              0);
    for (const auto& row : rows) {
        ASSERT_EQ(RunShell(folder, "rm -rf c; cp before.f f && cp -r before.c c && cp before.k k").code, 0);
        for (const std::string config : {"f", "c/", "kld:k"}) {
            const std::string line = Replaced(row.line, "X", config);
            const Outcome outcome = RunShell(folder, line);
            EXPECT_EQ(outcome.code, row.code) << line << "\n" << outcome.err;
            EXPECT_TRUE(Holds(outcome.err, Replaced(row.message, "X", config))) << line << outcome.err;
            EXPECT_EQ(outcome.err.empty(), row.code == 0) << line << outcome.err;
            EXPECT_EQ(Holds(outcome.out, "-max_acl_links = 3"), Holds(line, " -n")) << line << outcome.out;
            EXPECT_EQ(RunShell(folder, "kes diff f " + config).out, "") << line;
        }
    }
    EXPECT_EQ(RunShell(folder, "kes set c/ max_acl_links 4 -o d").code, 2);
    EXPECT_EQ(RunShell(folder, "kes set kld:k max_acl_links 4 --create").code, 2);
}

TEST(Edit, WritesWhereItIsTold) {
    const TempFolder folder;
    const std::string text = folder.Write("f", LINKS);
    const std::string edited = FOUR;
    Outcome outcome = RunShell(folder, "kes set - max_acl_links 4 <f");
    EXPECT_EQ(outcome.out, edited) << outcome.err;
    EXPECT_EQ(RunShell(folder, "kes set f max_acl_links 4 -o -").out, edited);
    outcome = RunShell(folder, "kes set - max_acl_links 9 <f");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(Holds(outcome.err, "<stdin>: error: max_acl_links = 9 is refused")) << outcome.err;
    EXPECT_EQ(RunShell(folder, "kes set f max_acl_links 4 -o g && kes set - max_acl_links 4 -o h <f").out,
              "");
    EXPECT_EQ(ReadFile(folder / "g"), edited);
    EXPECT_EQ(ReadFile(folder / "h"), edited);
    EXPECT_EQ(ReadFile(text), LINKS);

    // Through a link in another folder; owner and permissions stay.
    outcome =
        RunShell(folder,
                 "mkdir d; ln -s ../f d/l; chmod 0660 f; chown 0:7 f 2>/dev/null; stat -c '%a %u %g' f; "
                 "kes set d/l max_acl_links 4; stat -c '%a %u %g' f; readlink d/l; ls d");
    const std::string first = outcome.out.substr(0, outcome.out.find('\n') + 1);
    EXPECT_EQ(outcome.out, first + first + "../f\nl\n") << outcome.err;
    EXPECT_EQ(ReadFile(text), edited);

    // What a rename would replace against its owner's will takes force.
    for (const std::string protect : {"chmod 0440 f", "ln f other"}) {
        outcome = RunShell(folder, protect + "; kes set f max_acl_links 3");
        EXPECT_EQ(outcome.code, 2) << protect;
        EXPECT_TRUE(Holds(outcome.err, "nothing was written, --force replaces it")) << outcome.err;
        EXPECT_EQ(ReadFile(text), edited) << protect;
        outcome = RunShell(folder,
                           "kes set f max_acl_links 3 --force && kes set f max_acl_links 4 --force; "
                           "rm -f other; chmod 0660 f");
        EXPECT_EQ(ReadFile(text), edited) << outcome.err;
    }

    // A folder that takes no new file leaves the text alone; who may write everywhere has to give that up.
    outcome = RunShell(
        folder,
        "chmod 0777 .; mkdir r; cp f r; chmod 0777 r/f; chmod 0555 r; as=; test $(id -u) -ne 0 || "
        "as='setpriv --bounding-set=-dac_override'; $as '" KES_TEST_COMMAND "' set r/f max_acl_links 5");
    EXPECT_EQ(outcome.code, 3) << outcome.err;
    EXPECT_TRUE(Holds(outcome.err, "r/f: cannot be written: Permission denied")) << outcome.err;
    EXPECT_EQ(ReadFile(folder / "r/f"), edited);

    outcome = RunShell(folder,
                       "kes set new --create max_acl_links 3 --device smem --store 1 --chip ostrell_524_3_0");
    EXPECT_EQ(ReadFile(folder / "new"),
              "version = ostrell_524_3_0\n\nsubsystem = bluetooth\ndevice = smem\n"
              "store = 1\nmax_acl_links = 3\n")
        << outcome.err;
}

/// The diff of a dry run, given to `patch`, makes the text that the run without it makes.
TEST(Edit, ADryRunPrintsAPatch) {
    const char* const arguments[] = {"set f max_acl_links 4", "unset f max_acl_links",
                                     "set f pin_code '\"0\"'",
                                     "set f tx_power_limit.0.1 5 --device otp --store 2",
                                     "set f --create max_acl_links 3 --device smem --store 1"};
    for (const std::string before :
         {"file=bt1\nmax_acl_links=3\n", "file=bt1\r\nmax_acl_links=3\r\n# end", "none"}) {
        for (const std::string line : arguments) {
            const TempFolder folder;
            if (before == "none" && !Holds(line, "--create")) continue;
            if (before != "none") folder.Write("f", before);
            const Outcome outcome =
                RunShell(folder, "touch kept; kes " + line +
                                     " -n >d || exit 9; test ! -e f || cp f kept; kes " + line +
                                     " && cp f edited; cp kept f; test -s f || rm f; patch --binary -s -p0 "
                                     "<d && cmp f edited");
            EXPECT_EQ(outcome.code, 0) << line << "\n" << before << outcome.out << outcome.err;
        }
    }
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// A value of the same shape: its last digit is another. The others stay what they are.
std::string Neighbour(std::string value) {
    const std::size_t at = value.find_last_of("0123456789");
    if (at == std::string::npos) return {};
    value[at] = value[at] == '0' || value[at] == '9' ? '1' : static_cast<char>(value[at] - 1);
    return value;
}

TEST(Edit, TheLawHoldsForKeysOfTheExamples) {
    std::size_t changed = 0;
    std::size_t tried = 0;
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_FOLDER)) {
        if (entry.path().extension() != ".ktf") continue;
        const std::string text = ReadFile(entry.path().string());
        const TempFolder folder;
        const std::string path = folder.Write("f", text);
        folder.Write("first", text);
        std::vector<std::string> rows = Lines(RunKes({"list", path}).out);
        for (std::size_t i = 1; i < rows.size(); i += rows.size() < 60 ? 14U : 50U) {
            std::istringstream cells(rows[i]);
            std::string subsystem, device, store, state, key, value;
            cells >> subsystem >> device >> store >> state >> key >> std::ws;
            std::getline(cells, value);
            const std::string where = entry.path().filename().string() + ": " + rows[i];
            const std::vector<std::string> place = {"--subsystem", subsystem, "--device",
                                                    device,        "--store", store};
            const auto run = [&](std::vector<std::string> words) {
                words.insert(words.end(), place.begin(), place.end());
                return RunKes(words);
            };
            ++tried;
            // The writer's form of the value is another text of the same value.
            ASSERT_EQ(run({"set", path, key + "=" + value}).code, 0) << where;
            EXPECT_EQ(RunKes({"diff", folder / "first", path}, "2>/dev/null").out, "") << where;
            const std::string same = ReadFile(path);
            EXPECT_EQ(run({"get", path, key}).out, value + "\n") << where;
            const std::string other = Neighbour(value);
            if (!other.empty() && run({"set", path, key, other}).code == 0 && ReadFile(path) != same) {
                const std::vector<std::string> differences =
                    Lines(RunKes({"diff", folder / "first", path}).out);
                ASSERT_EQ(differences.size(), 1U) << where;
                EXPECT_TRUE(differences[0].starts_with("~ " + subsystem + " " + device + " " + store + ": " +
                                                       key + " = " + value + " -> "))
                    << where << "\n"
                    << differences[0];
                const std::vector<std::string> now = Lines(ReadFile(path));
                std::size_t others = 0;
                const std::vector<std::string> then = Lines(same);
                for (std::size_t n = 0; n < then.size(); ++n) others += n < now.size() && now[n] == then[n];
                EXPECT_TRUE(now.size() == then.size() && others + 1 == then.size()) << where;
                EXPECT_EQ(run({"set", path, key, value}).code, 0) << where;
                EXPECT_EQ(ReadFile(path), same) << where;
                ++changed;
            }
            EXPECT_EQ(run({"unset", path, key}).code, 0) << where;
            EXPECT_EQ(run({"get", path, key}).code, 1) << where;
            // What is left are lines of the text in their order: only those of the key have gone.
            const std::vector<std::string> all = Lines(text);
            const std::vector<std::string> left = Lines(ReadFile(path));
            auto next = all.begin();
            EXPECT_TRUE(std::ranges::all_of(left, [&](const std::string& line) {
                next = std::find(next, all.end(), line);
                return next != all.end() && (++next, true);
            })) << where;
            folder.Write("f", text);
        }
    }
    EXPECT_GT(tried, 15U);
    EXPECT_GT(changed * 2, tried) << "most values have a neighbour";
}

}  // namespace
