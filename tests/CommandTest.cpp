// The real command: what it prints where, and its exit codes.

#include "support/Database.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

using KesTest::EXAMPLE_DATABASE;
using KesTest::EXAMPLE_FOLDER;
using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

TEST(Check, GoodExamplesAreSilent) {
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_FOLDER)) {
        const std::string path = entry.path().string();
        if (!path.ends_with(".ktf") || Holds(path, "with-mistakes")) continue;
        const Outcome outcome = RunKes({"check", path});
        EXPECT_EQ(outcome.code, 0) << path;
        EXPECT_EQ(outcome.out + outcome.err, "") << path;
    }
}

TEST(Check, ReportsEveryMistakeAtItsPlace) {
    const std::string path = EXAMPLE_FOLDER + "/headunit-with-mistakes.ktf";
    const Outcome outcome = RunKes({"check", path});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
    std::vector<std::string> errors = Lines(outcome.err);
    std::erase_if(errors, [](const std::string& line) { return Holds(line, ": note: "); });
    for (std::string& line : errors) {
        ASSERT_TRUE(line.starts_with(path + ":")) << line;
        line.erase(0, path.size() + 1);
    }
    EXPECT_EQ(errors, Lines(KesTest::ReadFile(EXAMPLE_FOLDER + "/headunit-with-mistakes.expected")));
    EXPECT_GE(errors.size(), 25U);
    EXPECT_TRUE(Holds(outcome.err, "note: did you mean ")) << "a near miss of a name gives the name";
}

TEST(Check, ShowsTheSourceLineOnATerminalOnly) {
    const TempFolder folder;
    const std::string path = folder.Write("a.ktf", "file=bt1\r\n\tnobody\xC3\xA9 = 1\r\nrf = 2\n");
    const std::string run =
        "script -qec \"" KES_TEST_COMMAND " check " + path + "\" /dev/null </dev/null >" + (folder / "tty");
    ASSERT_EQ(std::system((run + "; test $? = 1").c_str()), 0);
    const std::string shown = KesTest::Replaced(KesTest::ReadFile(folder / "tty"), "\r", "");
    EXPECT_TRUE(Holds(shown, path + ":2:8: \x1b[1;31merror:\x1b[0m Invalid delimiter: nobody\n  "
                                    "\tnobody\xC3\xA9 = 1\n  \t      \x1b[1;32m^\x1b[0m\n"))
        << shown;
    ASSERT_NE(std::system(("NO_COLOR=1 " + run).c_str()), -1);
    EXPECT_FALSE(Holds(KesTest::ReadFile(folder / "tty"), "\x1b"));
    EXPECT_FALSE(Holds(RunKes({"check", path}).err, "^"));
}

TEST(Check, SaysOnRequestWhatWasFound) {
    const Outcome outcome = RunKes({"check", "-v", EXAMPLE_FOLDER + "/headunit-production.ktf"});
    EXPECT_EQ(outcome.code, 0);
    for (const char* part :
         {"system ostrell_520_2_3, chip OTR520 (id 76)", "\n    bt eeprom 1: ", "\n    wlan: ",
          "\n  stores\n    otp 2\n    mtp 1\n    smem 1\n    eeprom 1\n"}) {
        EXPECT_TRUE(Holds(outcome.out, part)) << part << "\n" << outcome.out;
    }
}

TEST(Check, ReadsStandardInputAndSeveralFiles) {
    Outcome outcome = RunKes({"check", "-"}, "printf 'file=bt1\\nnobody = 1\\n' |");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err,
              "<stdin>:2:10: error: Unknown name: nobody\n<stdin>: note: checked as a text of "
              "ostrell_520_2_3, the first of "
              "the database; choose another system with --chip\n");
    outcome = RunKes({"check", "-", EXAMPLE_FOLDER + "/headset.ktf", "/nowhere"}, "printf '# nothing\\n' |");
    EXPECT_EQ(outcome.code, 3) << "the worst of all";
    EXPECT_EQ(outcome.err,
              "<stdin>: warning: No configuration data found\n/nowhere: error: cannot be opened: No such "
              "file or directory\n");
}

TEST(Check, SaysPlainlyWhyItCannotWork) {
    const TempFolder folder;
    const std::string good = EXAMPLE_FOLDER + "/headset.ktf";
    const std::string text =
        folder.Write("text", "no database, but long enough for a look at its first bytes, which say so\n");
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string changed = folder.Write("changed.db", KesTest::ReadFile(EXAMPLE_DATABASE));
    KesTest::ChangeDatabase(changed, "UPDATE system SET rom_version = '9' WHERE id = 2");
    const struct {
        std::vector<std::string> arguments;
        int code;
        std::string message;
    } rows[] = {
        {{"check", folder.Path()},
         1,
         folder.Path() + ": error: Folder does not contain readable *.kcf files. No config data found."},
        {{"check", "text:" + folder.Path()}, 3, folder.Path() + ": error: is a directory"},
        {{"check", folder.Write("empty", "")},
         1,
         "error: The text file is zero length. No config data found."},
        {{"check", "--db", text, good}, 3, "kes: " + text + ": file is not a database"},
        {{"check", "--db", folder / "none", good},
         3,
         "kes: " + (folder / "none") + ": cannot be opened: No such file or directory"},
        {{"check", "--plugins", folder.Path(), good}, 3, "kes: no plug-in \"sqlite\" in " + folder.Path()},
        {{"check", "--chip", "ostrell_520", good},
         2,
         "unknown chip \"ostrell_520\", did you mean ostrell_520_2_3?"},
        {{"check", "--chip", "x", good},
         2,
         " has:\n  ostrell_520_2_3\n  ostrell_524_3_0\n  ostrell_310_1_7\n  ostrell_205_1_1\n"},
        {{"check"}, 2, "kes: CONFIG is required\nsee kes check --help"},
        {{"chek", good}, 2, "unknown command \"chek\", did you mean check?"},
        {{}, 2, "see kes --help"},
        {{"keys", "--subsystem", "bluetoth"}, 2, "ostrell_520_2_3 has no subsystem \"bluetoth\""},
        {{"keys", "no such thing"}, 1, "no key of ostrell_520_2_3 matches \"no such thing\""},
        {{"describe", "bd_adr"}, 1, "ostrell_520_2_3 has no key \"bd_adr\", did you mean bd_addr?"},
        {{"metadata", "check", folder / "none"}, 3, "cannot be opened: No such file or directory"},
        {{"metadata", "check", text}, 1, text + ": file is not a database"},
        {{"metadata", "check", pipe}, 3, pipe + ": is not a regular file"},
        {{"metadata", "check", changed}, 1, changed + ": its list of systems is damaged"},
        {{"metadata", "export", text}, 3, "file is not a database"},
        {{"chips", "--db", pipe}, 3, "kes: " + pipe + ": is not a regular file"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = RunKes(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.message;
        EXPECT_TRUE(Holds(outcome.err, row.message)) << row.message << "\n" << outcome.err;
        EXPECT_EQ(outcome.out, "") << row.message;
    }
    std::filesystem::copy_file(std::string(KES_TEST_PLUGIN_DIR) + "/sqlite.kpm", folder / "sqlite.kpm");
    const Outcome outcome = RunKes({"check", "--plugins", folder.Path(), good});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_TRUE(Holds(outcome.err, "KesText readerwriter plugin not found.")) << outcome.err;
    for (const char* name : {"sqlite.kpm", "KesText.kpm"}) {
        const std::string whole = KesTest::ReadFile(std::string(KES_TEST_PLUGIN_DIR) + "/" + name);
        const std::string cut = folder.Write(name, whole.substr(0, whole.size() / 2));
        const Outcome cutOff = RunKes({"check", "--plugins", folder.Path(), good});
        EXPECT_EQ(cutOff.code, 3);
        EXPECT_TRUE(Holds(cutOff.err, "note: " + cut + " left out: it is cut short\n")) << cutOff.err;
        folder.Write(name, whole);
    }
}

TEST(Output, HoldsNothingThatATerminalActsOn) {
    const TempFolder folder;
    // Colour, a line end, a C1 control, and text that runs backwards.
    const std::string evil = "a\x1b[31m\nb\xC2\x9b\xE2\x80\xAE\xC3\xA9";
    const std::string quoted = "a\\033[31m\\nb\\302\\233\\342\\200\\256\xC3\xA9";
    const std::string path = folder.Write(evil, "bogus = 1\nfile = bt\n\x1b[2J = 2\n");
    const Outcome check = RunKes({"check", path});
    EXPECT_TRUE(Holds(check.err, folder.Path() + "/" + quoted + ":1:")) << check.err;
    EXPECT_TRUE(Holds(RunKes({"chips", "--db", path}).err, "a\\033[31m")) << "in other messages too";
    EXPECT_TRUE(Holds(RunKes({"check", "/no\x9b"}).err, "/no\\233: error: ")) << "bytes that are no UTF-8";
    EXPECT_TRUE(Holds(RunKes({"check", "-v", path}).out, quoted + ": system "));
    EXPECT_EQ(RunKes({"get", path, "\x1b[1m"}).err.find('\x1b'), std::string::npos);

    const std::string source = folder.Write("s.json", R"({"systems": [{"label": "s1",
        "description": "up\u001b[1mand\u202edown\nleft", "chip": {"name": "C\u0007", "id": 76}, "subsystems": [
        {"name": "bt", "description": "\u009b1m", "keys": [{"psid": 1, "name": "k", "type": "octet_string",
         "format": "unicode_string", "label": "\u001b]0;x", "description": "one\n\u001btwo"}]}]}]})");
    const std::string database = folder / "s.db";
    ASSERT_EQ(RunKes({"metadata", "build", source, "-o", database}).err, "");
    const struct {
        std::vector<std::string> arguments;
        const char* shown;
    } rows[] = {
        {{"chips"}, "up\\033[1mand\\342\\200\\256down\\nleft"},
        {{"chips"}, "C\\a"},
        {{"subsystems"}, "\\302\\2331m"},
        {{"keys"}, "\\033]0;x"},
        {{"describe", "k"}, "one\n                \\033two"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.end(), {"--db", database});
        const std::string out = RunKes(arguments).out;
        EXPECT_TRUE(Holds(out, row.shown)) << out;
        EXPECT_EQ(out.find('\x1b'), std::string::npos) << out;
    }
    const std::string text =
        folder.Write("t.ktf", "subsystem=bt\ndevice=eeprom\nstore=1\nk = \"\x1b[1mx\"\n");
    const std::vector<std::string> get = {"get", text, "k", "--db", database};
    EXPECT_EQ(RunKes(get).out, "\"\x1b[1mx\"\n") << "other programs get a value as it is";
    EXPECT_TRUE(Holds(RunKes({"list", text, "--db", database}).out, "\\033[1mx"));
    const std::string run = "script -qec \"" KES_TEST_COMMAND " get " + text + " k --db " + database +
                            "\" /dev/null </dev/null >" + (folder / "tty");
    ASSERT_EQ(std::system(run.c_str()), 0);
    EXPECT_EQ(KesTest::ReadFile(folder / "tty"), "\"\\033[1mx\"\r\n");
}

TEST(Options, ComeFromFlagsThenFromTheEnvironment) {
    const std::string environment = "KES_DB=/nowhere KES_CHIP=ostrell_310_1_7";
    EXPECT_EQ(RunKes({"subsystems"}, environment).code, 3);
    const Outcome outcome = RunKes({"subsystems", "--db", EXAMPLE_DATABASE}, environment);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(Holds(outcome.out, "psaudio")) << outcome.out;
    EXPECT_EQ(RunKes({"chips"}, "KES_PLUGINS=/nowhere").code, 3);
    EXPECT_TRUE(Holds(RunKes({"--version"}).out, "kes 0."));
    EXPECT_EQ(RunKes({"chips"}, "true >&- ;").code, 0);
    EXPECT_EQ(std::system("'" KES_TEST_COMMAND "' chips >/dev/full 2>/dev/null"), 3 << 8)
        << "results that are lost are a failure";
}

TEST(Browse, FindsAndDescribesKeys) {
    EXPECT_EQ(Lines(RunKes({"chips"}).out).size(), 5U);
    EXPECT_EQ(Lines(RunKes({"subsystems", "--chip", "ostrell_520_2_3"}).out).size(), 10U);
    const std::vector<std::string> all = Lines(RunKes({"keys"}).out);
    EXPECT_EQ(all.size(), 280U);
    const std::vector<std::string> bt = Lines(RunKes({"keys", "--subsystem", "Bluetooth"}).out);
    EXPECT_EQ(bt.size(), 55U) << "an alias names the subsystem too";
    const std::vector<std::string> gain = Lines(RunKes({"keys", "GAIN"}).out);
    EXPECT_GT(gain.size(), 5U) << "in upper or lower case, in names, labels and descriptions";
    EXPECT_LT(gain.size(), 30U);
    const Outcome byName = RunKes({"describe", "tx_power_limit.1.0"});
    EXPECT_EQ(byName.code, 0);
    for (const char* part :
         {"tx_power_limit.<band>.<antenna> - Conducted power limit", "number        8219 (0x201B)",
          "range         0 to 92", "index band    0 to 2, BAND_2G4(0), BAND_5G(1), BAND_6G(2)",
          "default .0.1  70", "example       tx_power_limit.0.0 = 0"}) {
        EXPECT_TRUE(Holds(byName.out, part)) << part << "\n" << byName.out;
    }
    EXPECT_EQ(RunKes({"describe", "0x201B"}).out, byName.out);
    EXPECT_EQ(RunKes({"describe", "8219"}).out, byName.out);
}

/// What `describe` offers as an example is a good line for the reader, for every key there is.
TEST(Browse, EveryExampleLineIsValid) {
    const TempFolder folder;
    for (const char* chip : {"ostrell_520_2_3", "ostrell_310_1_7"}) {
        std::string text = std::string("version=") + chip + "\n";
        std::size_t count = 0;
        for (const std::string& line : Lines(RunKes({"subsystems", "--chip", chip}).out)) {
            const std::string subsystem = line.substr(0, line.find(' '));
            if (subsystem == "NAME" || subsystem == "gnss") continue;
            std::vector<std::string> arguments = {"describe", "--chip", chip, "--subsystem", subsystem};
            for (const std::string& key :
                 Lines(RunKes({"keys", "--chip", chip, "--subsystem", subsystem}).out)) {
                const std::size_t number = key.find("0x");
                if (number != std::string::npos)
                    arguments.push_back(key.substr(number, key.find(' ', number) - number));
            }
            text += "subsystem=" + subsystem + "\ndevice=otp\nstore=2\n";
            const std::string head = "  example       ";
            for (const std::string& shown : Lines(RunKes(arguments).out)) {
                if (!shown.starts_with(head)) continue;
                text += shown.substr(head.size()) + "\n";
                ++count;
            }
        }
        EXPECT_GT(count, 150U);
        const Outcome outcome = RunKes({"check", folder.Write("examples.ktf", text)});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
    }
}

TEST(MetadataCommand, BuildsExportsAndRefuses) {
    const TempFolder folder;
    const Outcome exported = RunKes({"metadata", "export", EXAMPLE_DATABASE});
    ASSERT_EQ(exported.code, 0);
    const std::string source = folder.Write("a.json", exported.out);
    EXPECT_EQ(RunKes({"metadata", "build", source, "-o", folder / "a.db"}).code, 0);
    EXPECT_EQ(RunKes({"metadata", "check", folder / "a.db"}).code, 0);
    EXPECT_EQ(RunKes({"metadata", "export", folder / "a.db"}).out, exported.out);

    const std::string database = KesTest::ReadFile(folder / "a.db");
    const std::string wrong = folder.Write(
        "wrong.json", KesTest::Replaced(exported.out, "\"type\":\"uint16\"", "\"type\":\"uint61\""));
    Outcome refused = RunKes({"metadata", "build", wrong, "-o", folder / "a.db"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(Holds(refused.err, ": error: unknown type \"uint61\""));
    EXPECT_EQ(KesTest::ReadFile(folder / "a.db"), database) << "the old database stays";

    const std::string keys =
        R"({"systems": [{"label": "s", "chip": {"name": "C", "id": 1}, "subsystems": [{"name": "bt", "keys": [
        {"psid": 1, "name": "a", "type": "uint8", "max": 9, "default": "10"},
        {"psid": 2, "name": "b", "type": "uint8", "indexes": [{"name": "i"}], "defaults": {"0": "1", "1": "x"}},
        {"psid": 3, "name": "c", "type": "uint8", "default": "3"}]}]}]})";
    const std::string bad = folder.Write("bad.json", keys);
    refused = RunKes({"metadata", "build", bad, "-o", folder / "b.db"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(
        refused.err,
        bad + ":2:72: error: default of key \"a\": Number is too large  must be between 0 and 9 (val=10)\n" +
            bad + ":3:107: error: default of key \"b\": Number expected\n");
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        left.insert(entry.path().filename().string());
    EXPECT_EQ(left, (std::set<std::string>{"a.db", "a.json", "bad.json", "wrong.json"}))
        << "nothing else is left behind";

    std::filesystem::create_symlink(folder / "a.db", folder / "link.db");
    EXPECT_EQ(
        RunKes({"metadata", "build", "-", "-o", folder / "link.db"}, "printf '{\"systems\": []}' |").code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.db"));
    EXPECT_EQ(RunKes({"metadata", "export", folder / "a.db"}).out, "{\n    \"systems\": []\n}\n");
    EXPECT_EQ(RunKes({"metadata", "build", source, "-o", "/nowhere/a.db"}).code, 3);
}

}  // namespace
