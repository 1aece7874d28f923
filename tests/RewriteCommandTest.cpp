// `kes rewrite`: the writer's form, proved before anybody sees it, and nobody's comments lost by accident.

#include "support/Files.h"
#include "tool/config/Comments.h"
#include "tool/output/UnifiedDiff.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using KesTest::EXAMPLE_FOLDER;
using KesTest::Outcome;
using KesTest::ReadFile;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(Rewrite, ExamplesReachTheirFormInOneStep) {
    const TempFolder folder;
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_FOLDER)) {
        const std::string path = entry.path().string();
        if (!path.ends_with(".ktf") || Holds(path, "with-mistakes")) continue;
        for (const std::string form : {"", "--simple"}) {
            std::vector<std::string> arguments = {"rewrite", path};
            if (!form.empty()) arguments.push_back(form);
            const Outcome first = RunKes(arguments);
            ASSERT_EQ(first.code, 0) << path << first.err;
            arguments[1] = folder.Write("once.ktf", first.out);
            const Outcome second = RunKes(arguments);
            EXPECT_EQ(second.out, first.out) << path;
            arguments.push_back("--check");
            EXPECT_EQ(RunKes(arguments).code, 0) << path;
            if (form.empty()) continue;
            EXPECT_FALSE(Holds(first.out, " \\\n")) << "one line for each key";
            EXPECT_FALSE(Holds(first.out, "\n# ")) << "no comments";
        }
    }
}

TEST(Rewrite, ShowsWhatWouldChange) {
    const TempFolder folder;
    const std::string path =
        folder.Write("a.ktf",
                     "version=ostrell_520_2_3\n\n##############################\nfile=bluetooth1\n"
                     "\n# Offset of the RSSI reading\nrssi_offset=-2");
    const Outcome outcome = RunKes({"rewrite", "--check", path});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(Holds(outcome.out, "--- " + path + "\n+++ " + path + " (rewritten)\n@@ -")) << outcome.out;
    EXPECT_TRUE(Holds(outcome.out, "-rssi_offset=-2\n\\ No newline at end of file\n")) << outcome.out;
    EXPECT_TRUE(Holds(outcome.out, "+rssi_offset = -2\n")) << outcome.out;
    EXPECT_FALSE(Holds(outcome.out, "+file=")) << "what stays is context";
    EXPECT_EQ(ReadFile(path).find(" = "), std::string::npos) << "nothing is written";
}

TEST(Rewrite, InPlaceAsksForCommentsThatWouldBeLost) {
    const TempFolder folder;
    const std::string text =
        "file=bt1\r\n# ask Ines before you change this\r\nrssi_offset = /* measured */ -2\r\n";
    const std::string path = folder.Write("a.ktf", text);
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    std::filesystem::create_symlink(path, folder / "link.ktf");
    const Outcome refused = RunKes({"rewrite", "-i", folder / "link.ktf"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(
        Holds(refused.err,
              "2 comments would be lost, the first of them \"ask Ines before you change this\"; nothing "
              "was written, --drop-comments allows it"))
        << refused.err;
    EXPECT_EQ(ReadFile(path), text);
    EXPECT_EQ(RunKes({"rewrite", "-i", "--drop-comments", folder / "link.ktf"}).code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.ktf"))
        << "the file behind the link is the one that changes";
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
    const std::string rewritten = ReadFile(path);
    EXPECT_TRUE(Holds(rewritten, "\nrssi_offset = -2\n")) << rewritten;
    EXPECT_EQ(RunKes({"rewrite", "-i", path}).code, 0) << "what the writer has made needs no asking";
    EXPECT_EQ(ReadFile(path), rewritten);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2)
        << "nothing is left beside it";
}

TEST(Rewrite, RefusesWhatWouldNotSurvive) {
    const TempFolder folder;
    const std::string wrong = folder.Write("wrong.ktf", "file=bt1\nrssi_offset = -2\nnobody = 1\n");
    for (const char* option : {"-i", "--check", "--simple"}) {
        const Outcome outcome = RunKes({"rewrite", option, wrong});
        EXPECT_EQ(outcome.code, 1) << option;
        EXPECT_EQ(outcome.out, "") << "a text with errors is not written at all";
        EXPECT_TRUE(Holds(outcome.err, wrong + ":3:10: error: Unknown name: nobody")) << outcome.err;
    }
    EXPECT_EQ(ReadFile(wrong), "file=bt1\nrssi_offset = -2\nnobody = 1\n");
    const std::string empty = folder.Write("empty.ktf", "file=bt1\n0x1001 = % %\n");
    const Outcome outcome = RunKes({"rewrite", empty, "-o", folder / "out.ktf"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(
        Holds(outcome.err, "cannot be rewritten, it would not read back the same: bt, eeprom, store 1"))
        << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "out.ktf"));
    EXPECT_EQ(RunKes({"rewrite", "-i", "-"}, "true |").code, 2);
    EXPECT_EQ(RunKes({"rewrite", "-i", "-o", "x", wrong}).code, 2);
    EXPECT_EQ(RunKes({"rewrite", folder / "missing"}).code, 3);
}

TEST(Rewrite, KeepsUnknownKeysAndRawValues) {
    const Outcome outcome = RunKes(
        {"rewrite", "-"}, "printf 'file=bt2\\n0x7FFF.3 = %% 5 [ 01 FF ] %%\\nrssi_offset = %% 1 %%\\n' |");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Holds(outcome.out, "\n32767.3 = % 0x05 [ 01 FF ] %\n")) << outcome.out;
    EXPECT_TRUE(Holds(outcome.out, "\nrssi_offset = % 0x01 %\n")) << outcome.out;
}

TEST(Comments, AreFoundAsTheReaderSeesThem) {
    const struct {
        const char* text;
        std::vector<std::string> comments;
    } rows[] = {
        {"# one\nk = 1 # two\n", {"one", "two"}},
        {"k = \"# no /* no */ \\\" # no\" # yes", {"yes"}},
        {"# joined \\\nwith this\nk = 1", {"joined \\\nwith this"}},
        {"k = 1 /* a\n b */ # c", {"a\n b", "c"}},
        {"#####\n## head ##\n/****/\n", {"head ##"}},
        {"k = 1 /* open", {"open"}},
        {"k = \"open # no\nj = 2 # yes\n", {"yes"}},
        {"", {}},
    };
    for (const auto& row : rows) EXPECT_EQ(kes::tool::CommentsOf(row.text), row.comments) << row.text;
    EXPECT_EQ(kes::tool::CommentsMissing("# a\n# b\n# a\n", "# a\n"), (std::vector<std::string>{"b", "a"}));
}

/// Takes a diff for what it says, as `patch` does.
std::string Patched(const std::string& text, const std::string& diff) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line + (stream.eof() ? "" : "\n"));
    std::string result;
    std::size_t at = 0;
    std::istringstream hunks(diff);
    std::string line;
    std::getline(hunks, line);
    std::getline(hunks, line);
    while (std::getline(hunks, line)) {
        if (line.starts_with("@@ -")) {
            std::size_t from = std::stoul(line.substr(4));
            const std::size_t count =
                line.substr(4, line.find(' ', 4) - 4).find(",0") == std::string::npos ? 1 : 0;
            for (from -= count; at < from; ++at) result += lines.at(at);
        } else if (line[0] == '+') {
            result += line.substr(1) + "\n";
        } else {
            if (line[0] == ' ') result += lines.at(at);
            ++at;
        }
    }
    for (; at < lines.size(); ++at) result += lines[at];
    return result;
}

TEST(Diff, LeadsFromOneTextToTheOther) {
    std::mt19937 random(7);
    const auto pick = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    const auto text = [&] {
        std::string made;
        for (std::size_t n = pick(40); n > 0; --n) made += std::string(1, "abc"[pick(3)]) + "\n";
        return made;
    };
    for (int round = 0; round < 500; ++round) {
        const std::string before = text();
        std::string after = pick(2) == 0 ? text() : before;
        if (!after.empty()) after.insert(pick(after.size() / 2 + 1) * 2, "x\n");
        const std::string diff = kes::tool::UnifiedDiff("a", "b", before, after);
        EXPECT_EQ(Patched(before, diff), after) << diff;
    }
    EXPECT_EQ(kes::tool::UnifiedDiff("a", "b", "same\n", "same\n"), "");
    EXPECT_EQ(kes::tool::UnifiedDiff("a", "b", "x", "x\n"),
              "--- a\n+++ b\n@@ -1 +1 @@\n-x\n\\ No newline at end of file\n+x\n");
    std::string many;
    std::string others;
    for (int i = 0; i < 20000; ++i) {
        many += std::to_string(i) + "\n";
        others += std::to_string(-i) + "\n";
    }
    EXPECT_EQ(Patched(many, kes::tool::UnifiedDiff("a", "b", many, others)), others)
        << "nothing in common, and in bounded time";
}

}  // namespace
