// The format's document tells the truth: each of its texts is read by the real command.

#include "support/Files.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Block {
    std::string kind;
    std::string text;
};

std::vector<Block> Blocks(const std::string& document) {
    std::vector<Block> blocks;
    bool inside = false;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```")) {
            inside = !inside;
            if (inside) blocks.push_back({line.substr(3), ""});
        } else if (inside) {
            blocks.back().text += line + "\n";
        }
    }
    return blocks;
}

TEST(FormatDocument, EveryTextIsReadAsItSays) {
    const KesTest::TempFolder folder;
    const std::vector<Block> blocks =
        Blocks(KesTest::ReadFile(std::string(KES_TEST_SOURCE_DIR) + "/docs/kestext.md"));
    std::size_t good = 0;
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!blocks[i].kind.starts_with("kestext")) continue;
        const std::string path = folder.Write("doc.ktf", blocks[i].text);
        const KesTest::Outcome outcome = KesTest::RunKes({"check", "--chip", "ostrell_520_2_3", path});
        if (blocks[i].kind == "kestext") {
            ++good;
            EXPECT_EQ(outcome.err, "") << blocks[i].text;
            continue;
        }
        ++wrong;
        ASSERT_LT(i + 1, blocks.size());
        ASSERT_EQ(blocks[i + 1].kind, "text");
        std::string errors;
        std::istringstream lines(outcome.err);
        for (std::string line; std::getline(lines, line);) {
            if (line.find(": note: ") == std::string::npos) errors += line.substr(path.size() + 1) + "\n";
        }
        EXPECT_EQ(errors, blocks[i + 1].text);
    }
    EXPECT_GT(good, 5U);
    EXPECT_GT(wrong, 1U);
}

}  // namespace
