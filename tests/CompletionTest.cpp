// What the shells offer while a command line is typed: the candidates, and the three scripts in their shells.

#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

using Words = std::vector<std::string>;

/// The candidates of an answer, without what they mean.
Words Candidates(const std::string& answer) {
    Words candidates;
    std::istringstream stream(answer);
    for (std::string line; std::getline(stream, line);) candidates.push_back(line.substr(0, line.find('\t')));
    return candidates;
}

Words Complete(Words words, const std::string& before = {}) {
    words.insert(words.begin(), {"__complete", "--"});
    const Outcome outcome = RunKes(words, before);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    return Candidates(outcome.out);
}

TEST(Candidates, FollowFromTheWordsInFront) {
    const TempFolder folder;
    // The text says which chip's keys are meant.
    const std::string tag = KesTest::EXAMPLE_FOLDER + "/asset-tag.ktf";
    const Words chips = {"ostrell_520_2_3", "ostrell_524_3_0", "ostrell_310_1_7", "ostrell_205_1_1"};
    const struct {
        Words typed;
        Words expected;
    } rows[] = {
        {{"che"}, {"check"}},
        {{"metadata", ""}, {"build", "export", "check"}},
        {{"--no-color", "metadata", "e"}, {"export"}},
        {{"help", "metadata", "b"}, {"build"}},
        {{"nonsense", ""}, {}},
        {{"completion", ""}, {"bash", "fish", "zsh"}},
        {{"check", "--c"}, {"--chip"}},
        {{"check", "--no"}, {"--no-color"}},
        {{"--vers"}, {"--version"}},
        {{"check", "--", "--c"}, {":files"}},
        {{"check", "a.ktf", ""}, {":files"}},
        {{"rewrite", "a.ktf", "--s"}, {"--simple"}},
        {{"metadata", "build", "a.json", "-"},
         {"--help", "--output", "--plugins", "--force", "--lock-timeout", "--no-color"}},
        {{"rewrite", "-io", ""}, {":files"}},
        {{"check", "--db="}, {":files"}},
        {{"check", "--plugins", ""}, {":folders"}},
        {{"check", "eep"}, {"eeprom:"}},
        {{"convert", "a.ktf", "kl"}, {"kld:"}},
        {{"device", "info", "kl"}, {"kld:"}},
        {{"device", "create-store", "kld:a", "--device", "s"}, {"smem"}},
        {{"diff", "eeprom:a"}, {":files"}},
        {{"get", "chunks:a"}, {":folders"}},
        {{"convert", "isp:a", "b", "--store-set", "f"}, {"fw_cfg"}},
        {{"check", "--chip", ""}, chips},
        {{"check", "--chip=ostrell_3"}, {"--chip=ostrell_310_1_7"}},
        {{"check", "--verbose=o"}, {}},
        {{"keys", "--subsystem", "b"}, {"bt", "bluetooth", "ble"}},
        {{"keys", ""}, {}},
        {{"describe", "antenna_d"}, {"antenna_diversity"}},
        {{"describe", "--subsystem", "bt", "antenna_d"}, {}},
        {{"describe", "bd_addr", "antenna_d"}, {"antenna_diversity"}},
        {{"describe", "--chip", "ostrell_205_1_1", "accel_r"}, {"accel_range"}},
        {{"get", tag, "accel_r"}, {"accel_range"}},
        {{"set", tag, "accel_range=4", "accel_o"}, {"accel_offsets"}},
        {{"unset", tag, "--device", "s"}, {"smem"}},
        {{"describe", "--chip", "no such chip", ""}, {}},
        {{"describe", "--db", "/nowhere", "antenna_d"}, {}},
        {{"describe", "--plugins", "/nowhere", "antenna_d"}, {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Complete(row.typed), row.expected) << testing::PrintToString(row.typed);
    }
    EXPECT_EQ(Complete({"describe", "accel_r"}), Words());
    EXPECT_EQ(Complete({"describe", "accel_r"}, "KES_CHIP=ostrell_205_1_1"), Words{"accel_range"});
    std::filesystem::create_symlink(KesTest::EXAMPLE_DATABASE, folder / "my.db");
    EXPECT_EQ(Complete({"describe", "--db", "~/my.db", "bd_"}, "KES_DB=/nowhere HOME=" + folder.Path()),
              Words{"bd_addr"});
    EXPECT_EQ(Complete({"check", ""}, "KES_DB=/nowhere KES_PLUGINS=/nowhere"), Words{":files"});
    EXPECT_EQ(RunKes({"__complete", "--", "describe", "bd_"}).out, "bd_addr\tDevice address\n");
}

bool IsInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

/// Runs a driver in a shell, with the script of `kes completion` as $1 and a command line as $2.
Words RunShell(const std::string& shell, const std::string& options, const std::string& driver,
               const std::string& line) {
    const TempFolder folder;
    const std::string script = folder.Write("script", RunKes({"completion", shell}).out);
    const std::string run = "cd '" + folder.Path() + "' && mkdir -p folder && touch file && PATH='" +
                            std::filesystem::path(KES_TEST_COMMAND).parent_path().string() +
                            "':$PATH HOME='" + folder.Path() + "' " + shell + " " + options + " '" +
                            folder.Write("driver", driver) + "' '" + script + "' '" + line + "' >out 2>err";
    EXPECT_EQ(std::system(run.c_str()), 0) << KesTest::ReadFile(folder / "err");
    EXPECT_EQ(KesTest::ReadFile(folder / "err"), "");
    return Candidates(KesTest::ReadFile(folder / "out"));
}

/// A line as typed, and what a shell offers that is given full words.
const struct {
    std::string line;
    Words expected;
} LINES[] = {
    {"kes che", {"check"}},
    {"kes metadata ", {"build", "check", "export"}},
    {"kes check --ch", {"--chip"}},
    {"kes check --chip ostrell_52", {"ostrell_520_2_3", "ostrell_524_3_0"}},
    {"kes check --chip=ostrell_52", {"--chip=ostrell_520_2_3", "--chip=ostrell_524_3_0"}},
    {"kes check --chip=",
     {"--chip=ostrell_205_1_1", "--chip=ostrell_310_1_7", "--chip=ostrell_520_2_3",
      "--chip=ostrell_524_3_0"}},
    {"kes describe --chip=ostrell_205_1_1 accel_r", {"accel_range"}},
    {"kes describe --subsystem \"bt\" bd_", {"bd_addr"}},
    {KES_TEST_COMMAND " --no-color desc", {"describe"}},
    {"kes get eep", {"eeprom:"}},
    {"kes keys ", {}},
};

void ExpectLines(const std::string& shell, const std::string& options, const std::string& driver) {
    for (const auto& row : LINES) {
        Words offered = RunShell(shell, options, driver, row.line);
        std::ranges::sort(offered);
        Words expected = row.expected;
        if (shell == "bash") {
            // Bash replaces only what stands behind "=".
            for (std::string& word : expected) word = word.substr(word.find('=') + 1);
        }
        EXPECT_EQ(offered, expected) << shell << ": " << row.line;
    }
}

TEST(CompletionScripts, WorkInBash) {
    const std::string driver =
        "source \"$1\"\n"
        "compopt() { [[ \" $* \" == *' +o default '* ]] && default=no; [[ \" $* \" == *' dirnames '* ]] && "
        "default=folders; }\n"
        "COMP_LINE=$2 COMP_POINT=${#2} default=files\n"
        "read -ra COMP_WORDS <<<\"${2//=/ = }\"\n"
        "[[ $2 == *' ' ]] && COMP_WORDS+=(\"\")\n"
        "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
        "complete -p kes >/dev/null && _kes\n"
        "[[ $default == no ]] || echo \":$default\"\n"
        "[[ ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
    ExpectLines("bash", "--norc", driver);
    EXPECT_EQ(RunShell("bash", "--norc", driver, "kes check f"), Words{":files"});
    EXPECT_EQ(RunShell("bash", "--norc", driver, "kes check --plugins=f"), Words{":folders"});
}

TEST(CompletionScripts, WorkInZsh) {
    if (!IsInstalled("zsh")) GTEST_SKIP() << "no zsh";
    // What only a line editor has is replaced; the words are split by the shell's own rules.
    const std::string driver =
        "compdef() { }\n"
        "compset() { PREFIX=${PREFIX#*=} }\n"
        "_files() { [[ $1 == -/ ]] && echo :folders $PREFIX || echo :files $PREFIX }\n"
        "compadd() { print -r -- $@[-1] }\n"
        "_describe() { local -a all=(\"${(@P)2}\"); [[ -z $all ]] || print -rl -- ${all%%:*} }\n"
        "source \"$1\"\n"
        "words=(${(z)2}); [[ $2 == *' ' ]] && words+=('')\n"
        "CURRENT=$#words PREFIX=$words[-1]\n"
        "_kes\n";
    ExpectLines("zsh", "-f", driver);
    EXPECT_EQ(RunShell("zsh", "-f", driver, "kes check --db=f"), Words{":files f"});
    EXPECT_EQ(RunShell("zsh", "-f", driver, "kes check --plugins f"), Words{":folders f"});
}

TEST(CompletionScripts, WorkInFish) {
    if (!IsInstalled("fish")) GTEST_SKIP() << "no fish";
    const std::string driver = "source $argv[1]\ncomplete -C $argv[2]\n";
    ExpectLines("fish", "--no-config", driver);
    EXPECT_EQ(RunShell("fish", "--no-config", driver, "kes check f"), (Words{"file", "folder/"}));
    EXPECT_EQ(RunShell("fish", "--no-config", driver, "kes check --plugins=f"), Words{"--plugins=folder/"});
    EXPECT_EQ(RunShell("fish", "--no-config", driver, "kes check kld:fi"), Words{"kld:file"});
}

}  // namespace
