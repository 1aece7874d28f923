// What the environment may choose, and that it may not where the command has the rights of another user. The
// command itself cannot be tried so: the system would not look for its library beside it either.

#include "support/Files.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

using KesTest::TempFolder;

namespace {

std::string Defaults(const TempFolder& folder) {
    const std::string run = "KES_DB=/mine.db KES_PLUGINS=/mine KES_CHIP=mine '" + folder / "probe" + "' >'" +
                            folder / "out" + "'";
    return std::system(run.c_str()) == 0 ? KesTest::ReadFile(folder / "out") : "failed";
}

TEST(TrustedEnvironment, VariablesCountUnlessTheRightsAreAnothers) {
    const TempFolder folder;
    ASSERT_EQ(chmod(folder.Path().c_str(), 0755), 0);
    std::filesystem::copy_file(std::string(KES_TEST_BINARY_DIR) + "/tests/defaults_probe", folder / "probe");
    EXPECT_EQ(Defaults(folder), "/mine.db\n/mine\nmine\n");

    struct statvfs place {};
    ASSERT_EQ(statvfs(folder.Path().c_str(), &place), 0);
    if (getuid() != 0 || (place.f_flag & ST_NOSUID) != 0) {
        GTEST_SKIP() << "needs root, and a file system with set-uid programs";
    }
    constexpr uid_t ANOTHER = 65534;
    ASSERT_EQ(chown((folder / "probe").c_str(), ANOTHER, ANOTHER), 0);
    ASSERT_EQ(chmod((folder / "probe").c_str(), 04755), 0);
    const std::string defaults = Defaults(folder);
    EXPECT_NE(defaults, "failed");
    EXPECT_EQ(defaults.find("mine"), std::string::npos) << defaults;
}

}  // namespace
