// What `kes check` tells of texts, in its three forms, and the ways of telling it: several processes, a bar.

#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

using KesTest::EXAMPLE_FOLDER;
using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;
using Json = nlohmann::json;

namespace {

const std::string MISTAKES = EXAMPLE_FOLDER + "/headunit-with-mistakes.ktf";
const std::string HEAD = "version=ostrell_520_2_3\nfile=bt1\n";

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// The place of a message, as the text form begins a line.
std::string At(const std::string& file, const Json& line, const Json& column) {
    return file + ":" + std::to_string(line.get<int>()) + ":" + std::to_string(column.get<int>()) + ": ";
}

Json SarifOf(const std::vector<std::string>& files, const std::string& before = {}) {
    std::vector<std::string> arguments = {"check", "--format=sarif"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    return Json::parse(RunKes(arguments, before).out).at("runs").at(0);
}

Json FindingsOf(const std::string& file) {
    return Json::parse(RunKes({"check", "--json", file}).out).at("results").at(0).at("findings");
}

TEST(CheckFormats, TellTheSame) {
    const Outcome text = RunKes({"check", MISTAKES});
    const Outcome json = RunKes({"check", "--json", MISTAKES});
    EXPECT_EQ(json.out, RunKes({"check", "--format=json", MISTAKES}).out);
    EXPECT_EQ(json.code, 1);
    EXPECT_EQ(json.err, "");
    const Json report = Json::parse(json.out).at("results").at(0);
    EXPECT_EQ(report.at("system"), "ostrell_520_2_3");
    std::string fromJson;
    for (const Json& finding : report.at("findings")) {
        const std::string at = At(MISTAKES, finding.at("line"), finding.at("column"));
        fromJson += at + "error: " + finding.at("message").get<std::string>() + "\n";
        for (const Json& note : finding.at("notes"))
            fromJson += at + "note: " + note.get<std::string>() + "\n";
    }
    EXPECT_EQ(fromJson, text.err);

    std::string fromSarif;
    const Json run = SarifOf({MISTAKES});
    for (const Json& result : run.at("results")) {
        const Json& region = result.at("locations").at(0).at("physicalLocation").at("region");
        const std::string at = At(MISTAKES, region.at("startLine"), region.at("startColumn"));
        fromSarif += at + result.at("level").get<std::string>() + ": " +
                     result.at("message").at("text").get<std::string>() + "\n";
        for (const Json& note : result.value("relatedLocations", Json::array())) {
            fromSarif += at + "note: " + note.at("message").at("text").get<std::string>() + "\n";
        }
        const Json& rule =
            run.at("tool").at("driver").at("rules").at(result.at("ruleIndex").get<std::size_t>());
        EXPECT_EQ(rule.at("id"), result.at("ruleId"));
        EXPECT_TRUE(result.at("message").at("text").get<std::string>().starts_with(
            rule.at("shortDescription").at("text").get<std::string>()));
    }
    EXPECT_EQ(fromSarif, text.err);
}

/// Notes say what the metadata allows where the message does not, and nothing that it does.
TEST(CheckFormats, NotesHelp) {
    const struct {
        std::string line;
        std::string note;  ///< empty for none
    } rows[] = {
        {"max_acl_links = 300", "max_acl_links takes 1 to 7"},
        {"max_acl_links = 9", ""},
        {"link_policy = 70000",
         "link_policy takes one of HOLD, NONE, ROLE_SWITCH, ROLE_SWITCH_AND_SNIFF, SNIFF"},
        {"packet_types = 0x12345",
         "packet_types takes 1 to 12 items in braces, each one of DH1, DH3, DH5, DM1, DM3, DM5, EDR2_1, "
         "EDR2_3, ... (12 in all; kes "
         "describe packet_types)"},
        {"link_policy = SNIF", "did you mean SNIFF?"},
        {"link_policy = QQQ", ""},
        {"sniff_params = {70000, 400, 4, 1}",
         "sniff_params takes {max_interval, min_interval, attempt, timeout}; kes describe sniff_params tells "
         "the range of each"},
        {"coex_pads = 33", "coex_pads takes 0 to 4 items in braces, each 0 to 63"},
        {"coex_pads = {1, 2, 3, 4, 5}", ""},
        {"tx_power_correction.a = 2", "written tx_power_correction.<channel>, channel 0 to 78"},
        {"max_acl_links.0 = 5", ""},
        {"max_acl_link = 5", "did you mean max_acl_links or max_sco_links?"},
        {"country = \"DE\"", "wlan has a key of this name"},
        {"nobody = 1", ""},
        {"device=eprom", "did you mean eeprom?"},
        {"device=flash", "devices: rom, otp, smem, mtp, cur_cfg, fw_cfg, eeprom"},
        {"subsystem=blutooth", "did you mean bluetooth?"},
        {"subsystem=gnss", "subsystems: curator, bt, wlan, audio, nfc, janitor, app, ble"},
        {"file=wlna1", "did you mean wlan?"},
        {"wlan16.country = \"CH \"", "a prefix takes a store from 1 to 15"},
        {"subsystem=wlan\ncountry = \"DE \"", "no good \"device=\" line stands above this key"},
    };
    const TempFolder folder;
    for (const auto& row : rows) {
        const Json findings = FindingsOf(folder.Write("a.ktf", HEAD + row.line + "\n"));
        ASSERT_EQ(findings.size(), 1U) << row.line;
        const Json expected = row.note.empty() ? Json::array() : Json::array({row.note});
        EXPECT_EQ(findings.at(0).at("notes"), expected) << row.line;
    }
}

/// Writing the first near word at the place that is given for it mends the line, and no other byte is
/// touched.
TEST(CheckFormats, FixesMendTheLine) {
    const struct {
        std::string line;
        std::string mended;  ///< empty where the place of the word is not sure
    } rows[] = {
        {"\tmax_acl_link = 5", "\tmax_acl_links = 5"},
        {"bt2.max_acl_link = 5", "bt2.max_acl_links = 5"},
        {"/*\nmax_acl_link */ max_acl_link = 5", ""},
        {"link_policy = SNIF # SNIF", "link_policy = SNIFF # SNIF"},
        {"rate_limits = {{BAND_2G4, 0, 7, 1, MHZ_20}, {BAND_5G, 0, 9, 2, MHZ_4}}", ""},
        {"sco_config = {AUDIO_SUBSYSTEM, CVS, 0, 0}", "sco_config = {AUDIO_SUBSYSTEM, CVSD, 0, 0}"},
        {"sco_config = {AUDIO_SUBSYSTEM, CVS /* \xC3\xA9 */, 0, 0}", ""},
        {"sco_config = {AUDIO_SUBSYSTEM, \\\n  CVS, 0, 0}", ""},
    };
    const TempFolder folder;
    for (const auto& row : rows) {
        const Json results = SarifOf({folder.Write("a.ktf", HEAD + row.line + "\n")}).at("results");
        ASSERT_EQ(results.size(), 1U) << row.line;
        std::string mended;
        if (results.at(0).contains("fixes")) {
            const Json& change = results.at(0).at("fixes").at(0).at("artifactChanges").at(0);
            const Json& replacement = change.at("replacements").at(0);
            const Json& region = replacement.at("deletedRegion");
            EXPECT_EQ(region.at("startLine"), 3) << row.line;
            const auto from = region.at("startColumn").get<std::size_t>();
            mended = row.line;
            mended.replace(from - 1, region.at("endColumn").get<std::size_t>() - from,
                           replacement.at("insertedContent").at("text").get<std::string>());
            EXPECT_EQ(RunKes({"check", folder.Write("b.ktf", HEAD + mended + "\n")}).code, 0) << mended;
        }
        EXPECT_EQ(mended, row.mended) << row.line;
    }
}

TEST(CheckFormats, ColumnsAreBytesInTextAndCodePointsInSarif) {
    const TempFolder folder;
    const std::string path =
        folder.Write("a.ktf", HEAD + "max_acl_links = /* \xC3\xA9\xF0\x9F\x98\x80 */ x\n");
    EXPECT_TRUE(Holds(RunKes({"check", path}).err, ":3:30: error: Number expected"));
    const Json run = SarifOf({path});
    EXPECT_EQ(run.at("columnKind"), "unicodeCodePoints");
    const Json& region = run.at("results").at(0).at("locations").at(0).at("physicalLocation").at("region");
    EXPECT_EQ(region.at("startColumn"), 26);
    EXPECT_EQ(region.at("endColumn"), 27);
}

TEST(CheckFormats, FingerprintsStayWhenLinesMove) {
    const auto printsOf = [](const std::string& text) {
        const TempFolder folder;
        std::vector<std::string> prints;
        const Json run = SarifOf({folder.Write("a.ktf", text)});
        for (const Json& result : run.at("results")) {
            prints.push_back(result.at("partialFingerprints").begin().value().get<std::string>());
        }
        return prints;
    };
    const std::string text = KesTest::ReadFile(MISTAKES) + HEAD;
    const std::vector<std::string> prints = printsOf(text);
    EXPECT_EQ(printsOf("# new\n\n" + text), prints);
    EXPECT_EQ(std::set<std::string>(prints.begin(), prints.end()).size(), prints.size());
    const std::vector<std::string> twice = printsOf(HEAD + "nobody = 1\nnobody = 1\n");
    ASSERT_EQ(twice.size(), 2U);
    EXPECT_NE(twice.at(0), twice.at(1));
}

TEST(CheckFormats, FilesAreNamedByUris) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "sub");
    const std::string text = HEAD + "nobody = 1\n";
    folder.Write("sub/a b%\xC3\xA9:.ktf", text);
    const TempFolder other;
    const std::string outside = other.Write("o.ktf", text);
    const Json run = SarifOf({"./sub/../sub/a b%\xC3\xA9:.ktf", outside, "-"},
                             "cd '" + folder.Path() + "' && printf 'file=bt1\\nnobody = 1\\n' |");
    EXPECT_EQ(run.at("originalUriBaseIds").at("WORKINGDIR").at("uri"), "file://" + folder.Path() + "/");
    std::vector<std::string> uris;
    for (const Json& result : run.at("results")) {
        const Json& file = result.at("locations").at(0).at("physicalLocation").at("artifactLocation");
        uris.push_back(file.value("uriBaseId", "") + " " + file.at("uri").get<std::string>());
    }
    EXPECT_EQ(uris, (std::vector<std::string>{"WORKINGDIR sub/a%20b%25%C3%A9%3A.ktf", " file://" + outside,
                                              " %3Cstdin%3E"}));
}

TEST(CheckFormats, OnlyFailuresGoToStandardError) {
    const TempFolder folder;
    const std::string empty = folder.Write("empty", "");
    for (const char* format : {"--format=json", "--format=sarif"}) {
        const Outcome outcome = RunKes({"check", format, "/nowhere", empty, MISTAKES});
        EXPECT_EQ(outcome.code, 3);
        EXPECT_EQ(outcome.err, "/nowhere: error: cannot be opened: No such file or directory\n");
        EXPECT_TRUE(Json::accept(outcome.out));
    }
    Json run = SarifOf({"/nowhere", empty});
    Json invocation = run.at("invocations").at(0);
    EXPECT_EQ(invocation.at("executionSuccessful"), false);
    EXPECT_EQ(invocation.at("toolExecutionNotifications").size(), 1U);
    ASSERT_EQ(run.at("results").size(), 1U) << "an empty text is wrong as a text, which is no failure";
    EXPECT_EQ(run.at("results").at(0).at("ruleId"), "KES000");
    invocation = SarifOf({MISTAKES}).at("invocations").at(0);
    EXPECT_EQ(invocation.at("executionSuccessful"), true);
    EXPECT_EQ(invocation.at("exitCode"), 1);
    EXPECT_EQ(SarifOf({folder.Write("none", "# nothing\n")}).at("results").at(0).at("level"), "warning");
}

TEST(CheckJobs, ManyProcessesPrintTheSameBytes) {
    const TempFolder folder;
    std::vector<std::string> files = {"/nowhere",
                                      folder.Write("bytes.ktf", HEAD + "max_acl_links = 1 \xFF\xC3\n"),
                                      folder.Write("empty", "")};
    for (int i = 0; i < 3; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_FOLDER)) {
            if (entry.path().extension() == ".ktf") files.push_back(entry.path().string());
        }
    }
    for (const char* format : {"--format=text", "--format=json", "--format=sarif"}) {
        std::vector<std::string> arguments = {"check", "-v", format};
        arguments.insert(arguments.end(), files.begin(), files.end());
        const Outcome one = RunKes(arguments);
        for (const char* jobs : {"-j0", "-j4"}) {
            arguments.at(1) = "-v";
            std::vector<std::string> several = arguments;
            several.emplace_back(jobs);
            const Outcome many = RunKes(several);
            EXPECT_EQ(many.out, one.out) << format;
            EXPECT_EQ(many.err, one.err) << format;
            EXPECT_EQ(many.code, one.code) << format;
        }
    }
    EXPECT_EQ(RunKes({"check", "-", "-"}, "true |").code, 2) << "standard input can be read once";
    EXPECT_EQ(RunKes({"check", "-j2", "--db", "/nowhere", "a", "b"}).err,
              RunKes({"check", "--db", "/nowhere", "a", "b"}).err);
    EXPECT_EQ(
        RunKes({"check", "-j2", "-", EXAMPLE_FOLDER + "/headset.ktf"}, "printf 'file=bt1\\nnobody = 1\\n' |")
            .code,
        1);
}

/// A pipe that nobody writes to holds one child fast, which is then killed.
TEST(CheckJobs, AChildThatDiesIsAFailureOfItsFileOnly) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe";
    const std::string script =
        "mkfifo '" + pipe + "'\n'" KES_TEST_COMMAND "' check -j2 '" + MISTAKES + "' '" + pipe + "' '" +
        EXAMPLE_FOLDER + "/headset.ktf' 2>'" + (folder / "err") + "' & parent=$!\nexec 3>'" + pipe +
        "'  # goes on when the pipe has its reader\n"
        "children() { cat /proc/$parent/task/$parent/children; }\n"
        "while [ \"$(children | wc -w)\" != 1 ]; do sleep 0.05; done\nkill -9 $(children); wait $parent\n";
    EXPECT_EQ(std::system(("timeout 60 sh '" + folder.Write("run", script) + "'").c_str()), 3 << 8);
    EXPECT_EQ(KesTest::ReadFile(folder / "err"),
              RunKes({"check", MISTAKES}).err + pipe +
                  ": error: the process that checked it was ended by signal 9 (Killed)\n");
}

/// The first text is a pipe that nobody writes to before a bar is wanted. It is opened when its reader is
/// there, so that the time does not begin before the command does.
TEST(CheckProgress, ShowsABarOnATerminalOnly) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe";
    const std::string command =
        "test -p '" + pipe + "' || mkfifo '" + pipe + "'\n(exec 3>'" + pipe +
        "'; sleep 2.2; printf 'file=bt1\nnobody = 1\n' >&3) &\ntimeout 60 " KES_TEST_COMMAND " check '" +
        pipe + "' " + EXAMPLE_FOLDER + "/headset.ktf";
    const std::string script = folder.Write("run", command + "\n");
    const auto shown = [&](const std::string& terminal) {
        const std::string run = "TERM=" + terminal + " script -qec 'sh " + script +
                                "' /dev/null </dev/null >" + (folder / terminal) + "; test $? = 1";
        EXPECT_EQ(std::system(run.c_str()), 0);
        return KesTest::ReadFile(folder / terminal);
    };
    const std::string bar = shown("xterm");
    EXPECT_TRUE(Holds(bar, "\r[")) << bar;
    EXPECT_TRUE(bar.ends_with("\r\x1b[K")) << "it is gone at the end: " << bar;
    EXPECT_FALSE(Holds(shown("dumb"), "\r["));
    ASSERT_EQ(std::system(("sh " + script + " 2>" + (folder / "plain") + "; test $? = 1").c_str()), 0);
    EXPECT_FALSE(Holds(KesTest::ReadFile(folder / "plain"), "\r"));
}

}  // namespace
