// The commands that read texts by key: what get, list, diff, defaults, stores and raw answer, in text and in
// JSON, and the exit codes of all.

#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace KesTest;
using Json = nlohmann::json;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// A text with good lines and two bad ones.
const std::string TEXT =
    "version=ostrell_520_2_3\nfile=bt1\nmax_acl_links = 3\nlocal_name = \"\"\nlost_links =\nnobody=1\n"
    "front_end_loss=8\n4480=% 1 %\nclass_of_device = x\neir_data = [ ]\nfile=wlan1\ntx_power_limit.0.1 = 5\n"
    "subsystem=bt\ndevice=smem\nstore=4\nmax_sco_links=1\n";
/// The same keys in another order, layout and section, with one changed, one removed and one added.
const std::string OTHER =
    "version=ostrell_520_2_3\nsubsystem=wlan\ndevice=eeprom\nstore=1\n  tx_power_limit.0.1=0x5 # five\n"
    "file=bt1\neir_data=[]\n4480 = % 0x0001 %\nmax_acl_links=1\nmax_acl_links=2\nfront_end_loss = 8\n"
    "bt4.max_sco_links=1\nlocal_name=\"\"\n";
const std::string WARNINGS =
    "f:6:8: warning: Unknown name: nobody\nf:9:19: warning: Number expected: class_of_device\n";

class Reading : public testing::Test {
protected:
    void SetUp() override {
        folder.Write("f", TEXT);
        folder.Write("g", OTHER);
        folder.Write("empty", "");
    }
    Outcome Run(const std::string& line) const { return RunShell(folder, line); }
    Json Document(const std::string& line, int code = 0) const {
        const Outcome outcome = Run(line + " --json");
        EXPECT_EQ(outcome.code, code) << line << "\n" << outcome.err;
        Json document = Json::parse(outcome.out, nullptr, /*allow_exceptions=*/false);
        EXPECT_FALSE(document.is_discarded()) << line << "\n" << outcome.out;
        EXPECT_EQ(document["format"], 1) << line;
        EXPECT_EQ(document["command"], line.substr(4, line.find(' ', 4) - 4)) << line;
        return document;
    }

    const TempFolder folder;
};

struct Row {
    const char* line;
    int code;
    std::string out;           ///< all of standard output
    std::string message = {};  ///< words of standard error; empty when that must be empty
};

TEST_F(Reading, AnswersInTextOnStandardOutputAlone) {
    const Row rows[] = {
        {"kes get f max_acl_links", 0, "3\n", WARNINGS},
        {"kes get g front_end_loss", 0, "8\n"},
        {"kes get g 0x1005 front_end_loss 4480", 0,
         "max_acl_links = 2\nfront_end_loss = 8\n4480 = % 0x01 %\n"},
        {"kes get g tx_power_limit.0.1 --subsystem wlan", 0, "5\n"},
        {"kes get - front_end_loss <g", 0, "8\n"},
        {"kes get g local_name", 4, "\"\"\n"},
        {"kes get g eir_data", 4, "[ ]\n"},
        {"kes get f lost_links", 4, "", "f: note: line 5 leaves lost_links without a value\n"},
        {"kes get g lost_links", 1, "", "g: error: lost_links is not there\n"},
        {"kes get g pa_type", 1, "", "pa_type"},
        {"kes get g tx_power_limit.1.0", 1, "", "tx_power_limit.1.0 is not there; its default is 68"},
        {"kes get g local_name max_acl_links", 4, "local_name = \"\"\nmax_acl_links = 2\n"},
        {"kes get g local_name lost_links max_acl_links", 1, "local_name = \"\"\nmax_acl_links = 2\n",
         "lost_links is not there"},
        {"kes get g max_acl_linx", 1, "", "has no key \"max_acl_linx\", did you mean max_acl_links"},
        {"kes get g max_acl_links --subsystem blutooth", 2, "", "has no subsystem \"blutooth\""},
        {"kes get empty max_acl_links", 1, "", "empty: warning: The text file is zero length"},
        {"kes list g --subsystem wlan", 0,
         "SUBSYSTEM  DEVICE  STORE  STATE    KEY                 VALUE\n"
         "wlan       eeprom  1      changed  tx_power_limit.0.1  5\n"},
        {"kes list f --store 1 --changed --subsystem bt", 0,
         "SUBSYSTEM  DEVICE  STORE  KEY            DEFAULT       VALUE\n"
         "bt         eeprom  1      max_acl_links  7             3\n"
         "bt         eeprom  1      local_name     \"OTR520\"      \"\"\n"
         "bt         eeprom  1      4480           -             % 0x01 %\n"
         "bt         eeprom  1      eir_data       [ 02 0A 04 ]  [ ]\n",
         WARNINGS},
        {"kes list g --device otp", 0, ""},
        {"kes list empty", 0, "", "empty: warning: The text file is zero length"},
        {"kes raw f", 0, "SUBSYSTEM  DEVICE  STORE  KEY   VALUE\nbt         eeprom  1      4480  % 0x01 %\n",
         "f: note: 2 lines have errors; the rest of the text is used\n"},
        {"kes raw g --subsystem wlan", 0, ""},
        {"kes stores f", 0,
         "DEVICE  STORE  KEYS  SUBSYSTEMS\nsmem    4      1     bt\neeprom  1      6     bt, wlan\n",
         WARNINGS},
        {"kes diff f f", 0, "", WARNINGS},
        {"kes diff g - <g", 0, ""},
        {"kes diff f g", 1,
         "~ bt eeprom 1: max_acl_links = 3 -> 2\n- bt smem 4: max_sco_links = 1\n"
         "+ bt eeprom 4: max_sco_links = 1\n",
         WARNINGS},
        {"kes diff f g --store 1 --subsystem wlan", 0, "", WARNINGS},
        {"kes diff --defaults g --subsystem wlan", 1, "~ wlan eeprom 1: tx_power_limit.0.1 = 70 -> 5\n"},
        {"kes diff - -", 2, "", "standard input can be given once"},
        {"kes diff g", 2, "", "two configurations are compared"},
        {"kes diff g g --defaults", 2, "", "--defaults takes one configuration"},
        {"kes defaults tx_power_limit.0.1 max_acl_links", 0,
         "SUBSYSTEM  KEY                 VALUE\nwlan       tx_power_limit.0.1  70\nbt         max_acl_links  "
         "     7\n"},
        {"kes defaults lost_links", 1, "", "lost_links has no default"},
    };
    for (const Row& row : rows) {
        const Outcome outcome = Run(row.line);
        EXPECT_EQ(outcome.code, row.code) << row.line << "\n" << outcome.err;
        EXPECT_EQ(outcome.out, row.out) << row.line;
        EXPECT_TRUE(row.message.empty() ? outcome.err.empty() : Holds(outcome.err, row.message))
            << row.line << "\n"
            << row.message << "\n"
            << outcome.err;
        const Outcome german = Run(std::string("export LC_ALL=de_DE.UTF-8; ") + row.line);
        EXPECT_EQ(german.out + german.err, outcome.out + outcome.err) << row.line;
    }
}

TEST_F(Reading, AnswersInJson) {
    const Json links = Json::parse(R"({"subsystem": "bt", "device": "eeprom", "store": 1, "number": 4101,
        "name": "max_acl_links", "indexes": [], "key": "max_acl_links", "value": "2", "default": "7",
        "state": "changed"})");
    Json document = Document("kes get g max_acl_links front_end_loss");
    EXPECT_EQ(document["file"], "g");
    EXPECT_EQ(document["system"], "ostrell_520_2_3");
    EXPECT_EQ(document["results"][0], links);
    EXPECT_EQ(document["results"][1]["state"], "default") << "equal to its default, and there";
    EXPECT_EQ(Document("kes get g local_name", 4)["results"][0]["state"], "empty");
    EXPECT_EQ(Document("kes get f lost_links", 4)["results"],
              Json::parse(R"([{"key": "lost_links", "value": null,
        "default": null, "state": "empty", "line": 5}])"));
    EXPECT_EQ(Document("kes get g tx_power_limit.0.0", 1)["results"],
              Json::parse(R"([{"key": "tx_power_limit.0.0",
        "value": null, "default": "72", "state": "missing"}])"));

    document = Document("kes list g");
    EXPECT_EQ(document["results"].size(), 7U);
    std::size_t changed = 0;
    for (const Json& key : document["results"]) {
        changed += key["state"] == "default" ? 0U : 1U;
        if (key["name"] == "max_acl_links") {
            EXPECT_EQ(key, links);
        }
        if (key["number"] != 4480) continue;
        EXPECT_TRUE(key["name"].is_null() && key["default"].is_null() && key["state"] == "no_default") << key;
        EXPECT_EQ(Document("kes raw g")["results"], Json::array({key}));
    }
    EXPECT_EQ(Document("kes list g --changed")["results"].size(), changed);
    EXPECT_EQ(Document("kes list empty")["results"], Json::array());

    document = Document("kes diff f g", 1);
    EXPECT_EQ(document["files"], Json::array({"f", "g"}));
    ASSERT_EQ(document["results"].size(), 3U);
    EXPECT_EQ(document["results"][0], Json::parse(R"({"subsystem": "bt", "device": "eeprom", "store": 1,
        "number": 4101, "name": "max_acl_links", "indexes": [], "key": "max_acl_links", "change": "changed",
        "before": "3", "after": "2"})"));
    EXPECT_EQ(document["results"][1]["change"], "removed");
    EXPECT_TRUE(document["results"][1]["after"].is_null());
    EXPECT_EQ(document["results"][2]["change"], "added");
    EXPECT_TRUE(document["results"][2]["before"].is_null());
    EXPECT_EQ(Document("kes diff g g")["results"], Json::array());

    EXPECT_EQ(Document("kes stores f")["results"], Json::parse(R"([
        {"device": "smem", "store": 4, "size": null, "free": null, "keys": 1, "subsystems": ["bt"]},
        {"device": "eeprom", "store": 1, "size": null, "free": null, "keys": 6, "subsystems": ["bt", "wlan"]}])"));
    document = Document("kes defaults tx_power_limit");
    EXPECT_EQ(document["results"].size(), 3U);
    EXPECT_EQ(document["results"][1],
              Json::parse(R"({"subsystem": "wlan", "number": 8219, "name": "tx_power_limit",
        "indexes": [0, 1], "key": "tx_power_limit.0.1", "value": "70"})"));
}

std::string SortedLines(const std::string& text) {
    std::multiset<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.insert(line);
    std::string sorted;
    for (const std::string& line : lines) sorted += line + "\n";
    return sorted;
}

/// What chunk files and devices hold is told as of a text, but for the order of their places.
TEST_F(Reading, AllKindsTellTheSame) {
    const char* lines[] = {"kes get X front_end_loss",
                           "kes get X 0x1005 front_end_loss 4480 --subsystem bt --store 1",
                           "kes get X local_name",
                           "kes get X lost_links",
                           "kes list X",
                           "kes list X --changed --subsystem bt",
                           "kes list X --json | sed 's/\"file\".*//;s/,$//'",
                           "kes raw X",
                           "kes diff X f 2>/dev/null",
                           "kes diff X --defaults",
                           "kes check X",
                           "kes diff g X"};
    ASSERT_EQ(Run("kes convert g chunks/ && kes device create kld:k --size 16K && kes convert g kld:k").code,
              0);
    for (const std::string line : lines) {
        const Outcome text = Run(Replaced(line, "X", "g"));
        for (const std::string config : {"chunks", "chunks:chunks", "kld:k"}) {
            const Outcome other = Run(Replaced(line, "X", config));
            EXPECT_EQ(other.code, text.code) << config << ": " << line << other.err;
            EXPECT_EQ(SortedLines(other.out), SortedLines(text.out)) << config << ": " << line;
            EXPECT_EQ(other.err, Replaced(text.err, "g:", config + ":"));
        }
    }
    EXPECT_TRUE(Holds(Run("kes stores chunks").out, "\neeprom  4      1     bt\n"));
    const Json store = Document("kes stores kld:k")["results"][0];
    EXPECT_GT(store["size"], store["free"]);
}

TEST_F(Reading, WhatDoesNotLoadIsAFailureWithItsReason) {
    folder.Write("none", "no image");
    std::filesystem::create_directory(folder / "empty.d");
    ASSERT_EQ(Run("kes convert g chunks/ && echo x >>chunks/bt-eeprom-0004.kcf").code, 0);
    const struct {
        const char* config;
        int check;
        const char* message;
    } rows[] = {{"kld:none", 1, "kld:none: error: "},
                {"kld:missing", 3, "kld:missing: error: unable to open the file: missing: No such file"},
                {"empty.d", 1, "empty.d: error: Folder does not contain readable *.kcf files."},
                {"missing/", 3, "missing/: "},
                {"chunks", 1, "bt-eeprom-0004.kcf"}};
    for (const auto& row : rows) {
        const std::string config = row.config;
        const Outcome checked = Run("kes check " + config);
        EXPECT_EQ(checked.code, row.check) << checked.err;
        EXPECT_TRUE(Holds(checked.err, row.message)) << checked.err;
        Json document = Json::parse(Run("kes check --json " + config).out);
        EXPECT_EQ(document["results"][0]["exit"], row.check) << config;
        EXPECT_EQ(document["results"][0]["errors"].size(), 1U) << config;
        document = Json::parse(Run("kes check --format=sarif " + config).out);
        const Json& run = document["runs"][0];
        EXPECT_EQ(run["results"].size() + run["invocations"][0].count("toolExecutionNotifications"), 1U);
        for (const char* line : {"kes list ", "kes raw ", "kes stores ", "kes diff g "}) {
            const Outcome outcome = Run(line + config);
            EXPECT_EQ(outcome.code, 3) << line << config;
            EXPECT_EQ(outcome.out, "") << line << config;
            EXPECT_TRUE(Holds(outcome.err, row.message)) << line << outcome.err;
        }
    }
}

/// Each row of the text forms has its record in the other form, over the largest example.
TEST_F(Reading, TextAndJsonTellTheSame) {
    const std::string file = "'" + EXAMPLE_FOLDER + "/headunit-production.ktf'";
    const struct {
        std::string line;
        std::vector<const char*> fields;
    } rows[] = {{"kes list " + file, {"subsystem", "device", "store", "state", "key", "value"}},
                {"kes list --changed " + file, {"subsystem", "device", "store", "key", "default", "value"}},
                {"kes raw " + file, {"subsystem", "device", "store", "key", "value"}},
                {"kes defaults", {"subsystem", "key", "value"}}};
    for (const auto& row : rows) {
        std::istringstream lines(Run(row.line).out);
        std::string line;
        std::getline(lines, line);
        const Json document = Document(row.line);
        for (const Json& record : document["results"]) {
            std::getline(lines, line);
            std::string cells;
            for (const char* field : row.fields) {
                const Json& cell = record[field];
                cells += cell.is_null() ? "-" : cell.is_string() ? cell.get<std::string>() : cell.dump();
            }
            std::string shown = line;
            std::erase(shown, ' ');
            std::erase(cells, ' ');
            EXPECT_EQ(shown, cells) << row.line;
        }
        EXPECT_FALSE(std::getline(lines, line)) << row.line << "\n" << line;
    }
}

/// The table of exit codes in the help, each code by several commands.
TEST_F(Reading, ExitCodesAreThoseOfTheTable) {
    const struct {
        int code;
        std::vector<const char*> lines;
    } rows[] = {
        {0,
         {"kes get g front_end_loss", "kes set g front_end_loss 8", "kes diff g g", "kes stores g",
          "kes set f max_acl_links 4", "kes convert g made/", "kes device create kld:k --size 16K",
          "kes convert made/ kld:k", "kes device info kld:k",
          "kes device create-store kld:k --device smem --store 1 --size 256"}},
        {1,
         {"kes get g lost_links", "kes set g max_acl_links 9", "kes add g max_acl_links 3",
          "kes unset g lost_links", "kes diff g f", "kes diff g --defaults", "kes defaults lost_links",
          "kes set g nobody 1", "kes convert f made/", "kes device create kld:k --size 16K",
          "kes device info eeprom:k", "kes device create-store kld:k --device smem --store 1 --size 256"}},
        {2,
         {"kes get g", "kes set g max_acl_links", "kes list g --nothing", "kes list g --subsystem none",
          "kes raw g --chip none", "kes stores", "kes diff g", "kes unset g max_acl_links --store x",
          "kes convert g", "kes convert g made/ --merge", "kes device info g", "kes device create kld:k"}},
        {3,
         {"kes get none lost_links",
          "kes list none",
          "kes raw .",
          "kes stores none",
          "kes diff g none",
          "kes set none lost_links 1",
          "kes list g --db none",
          "kes defaults --plugins .",
          "kes list g >/dev/full",
          "kes list g >&-",
          "kes get g front_end_loss --json >/dev/full",
          "kes diff f g >/dev/full",
          "kes set g front_end_loss 9 -n >/dev/full",
          "kes set - front_end_loss 9 <g >/dev/full",
          "kes stores g >&-",
          "kes defaults >/dev/full",
          "kes raw g >&-",
          "kes convert none made/",
          "kes convert g kld:none",
          "kes convert g - >/dev/full",
          "kes device info kld:none",
          "kes device info kld:k >/dev/full"}},
        {4,
         {"kes get g eir_data", "kes get f lost_links", "kes get g local_name --json",
          "kes get - local_name <g"}},
    };
    for (const auto& row : rows) {
        for (const std::string line : row.lines) {
            folder.Write("f", TEXT);
            const Outcome outcome = Run(line);
            EXPECT_EQ(outcome.code, row.code) << line << "\n" << outcome.err;
            EXPECT_EQ(ReadFile(folder / "g"), OTHER) << line;
            if (row.code != 2 && row.code != 3) continue;
            EXPECT_EQ(outcome.out, "") << line;
            EXPECT_FALSE(outcome.err.empty()) << line;
            EXPECT_TRUE(!Holds(line, " none") || row.code == 2 || Holds(outcome.err, "none: "))
                << outcome.err;
        }
    }
}

TEST_F(Reading, BytesThatAreNoUnicodeAreToldApartAndPrintedAsTheyAre) {
    folder.Write("a", "version=ostrell_520_2_3\nfile=bt1\nlocal_name = \"x\xFFy\"\n");
    folder.Write("b", "version=ostrell_520_2_3\nfile=bt1\nlocal_name = \"x\xFEy\"\n");
    EXPECT_EQ(Run("kes get a local_name").out, "\"x\xFFy\"\n");
    const Outcome diff = Run("kes diff a b");
    EXPECT_EQ(diff.code, 1);
    EXPECT_TRUE(Holds(diff.out, R"(local_name = "x\377y" -> "x\376y")")) << diff.out;
    const Json got = Document("kes get a local_name")["results"][0];
    EXPECT_EQ(got["value"], "\"x\uFFFDy\"");
    EXPECT_EQ(got["value_hex"], "2278FF7922");
    EXPECT_FALSE(got.contains("default_hex"));
    const Json change = Document("kes diff a b", 1)["results"][0];
    EXPECT_EQ(change["before"], change["after"]);
    EXPECT_EQ(change["before_hex"], "2278FF7922");
    EXPECT_EQ(change["after_hex"], "2278FE7922");
    EXPECT_EQ(Run("kes set b local_name \"$(kes get a local_name)\" && cmp a b").code, 0)
        << "what get prints can be set";
}

}  // namespace
