// Help and man pages say the same of every command, and the pages are clean.

#include "support/Files.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

/// The first word of each line of a section of a help.
std::vector<std::string> Entries(const std::string& help, const std::string& section) {
    std::vector<std::string> entries;
    std::istringstream stream(help);
    bool inside = false;
    constexpr std::size_t INDENT = 2;
    for (std::string line; std::getline(stream, line);) {
        if (inside && line.find_first_not_of(' ') == INDENT)
            entries.push_back(line.substr(INDENT, line.find(' ', INDENT) - INDENT));
        if (!line.empty() && line[0] != ' ') inside = line == section + ":";
    }
    return entries;
}

/// Looks at a command and all below it; gives the names of their pages.
void Visit(const std::vector<std::string>& command, const std::string& folder, std::set<std::string>& pages) {
    std::vector<std::string> words = command;
    words.emplace_back("--help");
    const Outcome outcome = RunKes(words);
    ASSERT_EQ(outcome.code, 0);
    words = command;
    words.insert(words.begin(), "help");
    EXPECT_EQ(RunKes(words).out, outcome.out);
    std::string name = "kes";
    for (const std::string& word : command) name += "-" + word;
    pages.insert(name + ".1");
    // As typed, without the marks of the formatter.
    std::string page = KesTest::ReadFile(folder + "/" + name + ".1");
    for (const char* mark : {"\\fB", "\\fI", "\\fR", "\\"}) page = KesTest::Replaced(page, mark, "");
    const std::size_t examples = outcome.out.find("\nExamples:\n");
    EXPECT_EQ(examples != std::string::npos, page.find(".SH EXAMPLES\n.TP\nkes") != std::string::npos ||
                                                 page.find(".SH EXAMPLES\n.TP\nsource") != std::string::npos)
        << name;
    EXPECT_TRUE(examples == std::string::npos || examples < outcome.out.find("\nUsage: kes")) << outcome.out;
    EXPECT_NE(page.find(" 1 \"\" \"kesconfigtools "), std::string::npos) << name << ": no date";
    for (const std::string& option : Entries(outcome.out, "Options")) {
        const std::string last = option.substr(option.find(',') + 1);
        EXPECT_NE(page.find(last), std::string::npos) << name << ": " << option;
    }
    for (const std::string& child : Entries(outcome.out, "Subcommands")) {
        EXPECT_NE(page.find("\n" + name + "-" + child + "(1)"), std::string::npos) << name << ": " << child;
        std::vector<std::string> below = command;
        below.push_back(child);
        Visit(below, folder, pages);
    }
}

TEST(ManPages, AreThoseOfTheCommandsAndSayWhatHelpSays) {
    const TempFolder folder;
    ASSERT_EQ(RunKes({"__man", folder / "man1"}).code, 0);
    std::set<std::string> commands;
    Visit({}, folder / "man1", commands);
    EXPECT_GE(commands.size(), 13U);
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "man1")) {
        pages.insert(entry.path().filename().string());
    }
    EXPECT_EQ(pages, commands);
    EXPECT_EQ(RunKes({"__man", "/dev/null/man1"}).code, 3);
}

/// A page without a date is what is wanted, so that two builds give equal pages.
TEST(ManPages, AreClean) {
    const TempFolder folder;
    ASSERT_EQ(RunKes({"__man", folder.Path()}).code, 0);
    for (const auto& [program, check] :
         {std::pair{"mandoc", "mandoc -T lint -W warning *.1 | grep -v 'missing date'"},
          std::pair{"groff", "groff -man -ww -z *.1 2>&1 | grep ."}}) {
        if (std::system((std::string("command -v ") + program + " >/dev/null").c_str()) != 0) continue;
        EXPECT_NE(std::system(("cd '" + folder.Path() + "' && " + check).c_str()), 0) << program;
    }
}

TEST(Help, NamesTheNearCommand) {
    const Outcome outcome = RunKes({"help", "metadata", "biuld"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err,
              "kes: kes metadata has no command \"biuld\", did you mean build?\nsee kes --help\n");
}

}  // namespace
