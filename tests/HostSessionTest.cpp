// The host program of examples/host-session: its output, and the text that it saves.

#include "support/Files.h"

#include <gtest/gtest.h>

using KesTest::EXAMPLE_FOLDER;
using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

/// Runs the program on a text of the shipped example. Standard output only.
Outcome RunSession(const std::string& chip, const std::string& text, const std::string& newFile) {
    const TempFolder folder;
    const std::string line = "'" KES_TEST_BINARY_DIR "/tests/host_session' " + chip + " '" + EXAMPLE_FOLDER +
                             "/" + text + "' '" + newFile + "' >'" + folder / "out" + "'";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, KesTest::ReadFile(folder / "out"), {}};
}

TEST(HostSession, ReadsChangesComparesAndSaves) {
    const TempFolder folder;
    const Outcome outcome = RunSession("ostrell_310_1_7", "headset.ktf", folder / "new.ktf");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, R"(class_of_device was 0x240404
refused: 
line 2, column 6: Number expected: class_of_device

1 error found
now
# Class of device
class_of_device = 0x240414
not at their defaults in bt:
  local_name = "Taubnitz 3", by default "OTR310"
  class_of_device = 0x240414, by default 0x240418
  twin_link = {[ 02 4F 54 31 0B 02 ], LEFT, 28, 9}, by default {[ 02 4F 54 31 00 02 ], LEFT, 30, 12}
  link_loss_retry = {2, 5, 10, 30, 60}, by default {5, 10, 30, 60}
  hfp_codecs = {0x01, 0x02, 0x03}, by default {0x01, 0x02}
  4480 = % 0x01 0xFF 0x9C40 %
  4481.2 = % 0x1234 0x34 %
the default is
# Class of device
class_of_device = 0x240418
not known to the metadata:
  4480, Internal Key
  4481, Internal Key
)");
    const Outcome difference = RunKes({"diff", EXAMPLE_FOLDER + "/headset.ktf", folder / "new.ktf"});
    EXPECT_EQ(difference.out, "~ bt eeprom 1: class_of_device = 0x240404 -> 0x240414\n");
}

TEST(HostSession, StopsAtWhatIsWrong) {
    const TempFolder folder;
    struct Case {
        std::string chip;
        std::string text;
        std::string says;
    };
    const std::vector<Case> cases = {{"nochip", "headset.ktf", "there is no chip nochip\n"},
                                     {"ostrell_205_1_1", "asset-tag.ktf", "has no class_of_device\n"},
                                     {"ostrell_310_1_7", "none.ktf", "none.ktf"},
                                     {"ostrell_520_2_3", "headunit-with-mistakes.ktf", "errors found\n"}};
    for (const Case& wrong : cases) {
        const Outcome outcome = RunSession(wrong.chip, wrong.text, folder / "new.ktf");
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.out.find(wrong.says), std::string::npos) << outcome.out;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "new.ktf"));
}

}  // namespace
