// What the command promises of files: a lock is waited for, and nothing is replaced that was not meant. What
// writers, kills and faults of the disk do to a save is tried by scripts/check_saves.

#include "support/Files.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace KesTest;

namespace {

namespace fs = std::filesystem;

bool Holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

/// A configuration of each kind with these keys, as the command names it.
std::vector<std::string> MakeAll(const TempFolder& folder) {
    folder.Write("t.ktf",
                 "version = ostrell_520_2_3\nfile=bt1\nmax_acl_links = 1\nfile=wlan1\nantenna_gain = 0\n");
    const Outcome made =
        RunShell(folder,
                 "kes device create eeprom:e --size 4K && kes device create isp:i --size 8K && "
                 "kes device create kld:k --size 64K && "
                 "for to in c/ eeprom:e isp:i kld:k; do kes convert t.ktf $to || exit 1; done");
    EXPECT_EQ(made.code, 0) << made.err;
    return {"t.ktf", "c/", "eeprom:e", "isp:i", "kld:k"};
}

TEST(Writers, TellWhoHoldsALock) {
    const TempFolder folder;
    for (const std::string& config : MakeAll(folder)) {
        const std::string path = folder / config.substr(config.find(':') + 1);
        const int held = open(path.c_str(), O_RDONLY);
        ASSERT_EQ(flock(held, LOCK_EX), 0);
        const Outcome outcome = RunShell(folder, "kes set " + config + " max_acl_links=5 --lock-timeout 0.1");
        EXPECT_EQ(outcome.code, 3) << config;
        EXPECT_TRUE(Holds(outcome.err, "is locked by trusted_saves_t, process " + std::to_string(getpid()) +
                                           "; waited 100 ms"))
            << outcome.err;
        // Texts are replaced whole, so that their readers need no lock.
        EXPECT_EQ(RunShell(folder, "kes get " + config + " max_acl_links --lock-timeout 0.1").code,
                  config == "t.ktf" ? 0 : 3);
        close(held);
        EXPECT_EQ(RunShell(folder, "kes get " + config + " max_acl_links").out, "1\n");
    }
}

TEST(Outputs, AreReplacedByTheirOwnKindOnly) {
    const TempFolder folder;
    MakeAll(folder);
    const Outcome made =
        RunShell(folder, "kes metadata export '" KES_TEST_SHARE_DIR
                         "/examples/ostrell.db' -o j.json && "
                         "kes metadata build j.json -o d.db && cp c/bt-eeprom-0001.kcf x.kcf && "
                         "printf 'PNG: not one of ours\\n' >photo && : >empty && mkfifo pipe");
    ASSERT_EQ(made.code, 0) << made.err;
    const struct {
        const char* command;
        const char* target;
        const char* said;
    } rows[] = {
        {"kes convert t.ktf k", "k", "k: is a device image, not a configuration text"},
        {"kes convert t.ktf x.kcf", "x.kcf", "x.kcf: is a chunk file, not a configuration text"},
        {"kes rewrite t.ktf -o d.db", "d.db", "d.db: is a database, not a configuration text"},
        {"kes set t.ktf max_acl_links=2 -o photo", "photo", "photo: is another kind of file"},
        {"kes metadata build j.json -o t.ktf", "t.ktf", "t.ktf: is another kind of file, not a database"},
        {"kes metadata export d.db -o t.ktf", "t.ktf", "t.ktf: is another kind of file, not a JSON file"},
    };
    for (const auto& row : rows) {
        const std::string before = ReadFile(folder / row.target);
        const Outcome outcome = RunShell(folder, row.command);
        EXPECT_EQ(outcome.code, 2) << row.command << outcome.err;
        EXPECT_TRUE(Holds(outcome.err, row.said)) << outcome.err;
        EXPECT_EQ(ReadFile(folder / row.target), before) << row.command;
        EXPECT_EQ(RunShell(folder, std::string("cp ") + row.target + " keep; " + row.command +
                                       " --force; x=$?; cp keep " + row.target + "; exit $x")
                      .code,
                  0)
            << row.command;
    }
    EXPECT_EQ(RunShell(folder,
                       "kes convert t.ktf empty && kes convert t.ktf /dev/null && "
                       "kes convert t.ktf /dev/stdout | grep -q max_acl_links && "
                       "(cat pipe >got & kes convert t.ktf pipe; wait) && grep -q max_acl_links got")
                  .code,
              0);
    folder.Write("photo.kcf", "x");
    fs::copy(folder / "photo.kcf", folder / "c/photo.kcf");
    const Outcome outcome = RunShell(folder, "kes convert t.ktf c/");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(Holds(outcome.err, "c/photo.kcf: is another kind of file, not a chunk file")) << outcome.err;
}

TEST(Outputs, KeepTheCommentsOfTheTextThatTheyReplace) {
    const TempFolder folder;
    const std::string text = "version = ostrell_520_2_3\n# mine\nfile=bt1\nmax_acl_links = 3\n";
    folder.Write("t", text);
    for (const std::string command : {"rewrite -i t", "rewrite t -o t", "convert t t", "convert t ./t",
                                      "rewrite t -o link", "convert link t"}) {
        const Outcome outcome = RunShell(folder, "ln -sf t link; kes " + command);
        EXPECT_EQ(outcome.code, 1) << command;
        EXPECT_TRUE(Holds(outcome.err, "1 comment would be lost, the first of them \"mine\"")) << outcome.err;
        EXPECT_EQ(ReadFile(folder / "t"), text) << command;
        EXPECT_EQ(RunShell(folder, "cp t k; kes " + command + " --drop-comments; x=$?; cp k t; exit $x").code,
                  0)
            << command;
    }
}

TEST(Inputs, OfAFolderAreReadWholeOrNotAtAll) {
    const TempFolder folder;
    MakeAll(folder);
    const std::string good = ReadFile(folder / "c/bt-eeprom-0001.kcf");
    const struct {
        const char* make;
        const char* said;
    } rows[] = {
        {": >c/z.kcf", "c/z.kcf: cannot be read: the file is empty"},
        {"mkdir c/z.kcf", "c/z.kcf: cannot be read: Is a directory"},
        {"mkfifo c/z.kcf", "c/z.kcf: cannot be read: it is not a regular file"},
        {"ln -s nowhere c/z.kcf", "c/z.kcf: cannot be opened: No such file or directory"},
    };
    for (const auto& row : rows) {
        for (const std::string command :
             {"check c/", "convert c/ t2.ktf", "set c/ max_acl_links=4", "diff c/ t.ktf"}) {
            const Outcome outcome =
                RunShell(folder, std::string(row.make) + "; timeout 20 " KES_TEST_COMMAND " " + command);
            EXPECT_EQ(outcome.code, 3) << row.make << ", " << command;
            EXPECT_TRUE(Holds(outcome.err, row.said)) << outcome.err;
            fs::remove(folder / "c/z.kcf");
        }
    }
    EXPECT_FALSE(fs::exists(folder / "t2.ktf"));
    EXPECT_EQ(ReadFile(folder / "c/bt-eeprom-0001.kcf"), good);
}

TEST(Inputs, ThatComeLateOrNotAtAllAreNoEmptyTexts) {
    const TempFolder folder;
    const Outcome late = RunShell(folder,
                                  "mkfifo p; (sleep 0.3; printf 'file=bt1\\nmax_acl_links = 3\\n' >p) & "
                                  "kes get p max_acl_links");
    EXPECT_EQ(late.out, "3\n") << late.err;
    const Outcome folderIn = RunShell(folder, "kes check - <.");
    EXPECT_EQ(folderIn.code, 3);
    EXPECT_TRUE(Holds(folderIn.err, "<stdin>: error: cannot be read: Is a directory") ||
                Holds(folderIn.err, "-: error: cannot be read: Is a directory"))
        << folderIn.err;
}

TEST(Paths, AreBytes) {
    const TempFolder folder;
    const Outcome texts = RunShell(folder,
                                   "a=$(printf '\\377'); b=$(printf '\\376'); for n in $a $b; do printf "
                                   "'file=bt1\\nmax_acl_links = 3\\n' >$n; done; kes set $a max_acl_links 4; "
                                   "kes get $a max_acl_links; kes get $b max_acl_links");
    EXPECT_EQ(texts.out, "4\n3\n") << texts.err;
    folder.Write("t", "file=bt1\nmax_acl_links = 3\n");
    for (const std::string to : {"$a/", "eeprom:$a"}) {
        const Outcome outcome = RunShell(folder, "a=$(printf '\\375'); kes convert t " + to);
        EXPECT_EQ(outcome.code, 2) << to;
        EXPECT_TRUE(Holds(outcome.err, "\\375")) << outcome.err;
        EXPECT_TRUE(Holds(outcome.err, "is not UTF-8")) << outcome.err;
    }
    EXPECT_EQ(RunShell(folder, "kes check t --db \"$(printf '\\375')\"").code, 2);
}

TEST(Nodes, StayNodes) {
    const TempFolder folder;
    const Outcome outcome =
        RunShell(folder, "mkfifo p; ln -s i l; for n in p /dev/null; do timeout 20 " KES_TEST_COMMAND
                         " device create eeprom:$n "
                         "--size 2K --force || echo $?; done; kes device create eeprom:l --size 2K --force; "
                         "stat -c %F p l i; timeout 20 " KES_TEST_COMMAND
                         " check eeprom:p; echo $?; timeout 20 " KES_TEST_COMMAND " check t --db p; echo $?");
    EXPECT_EQ(outcome.out, "2\n2\nfifo\nsymbolic link\nregular file\n3\n3\n") << outcome.err;
}

}  // namespace
