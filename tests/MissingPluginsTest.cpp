// A host whose plug-in folder lacks what it needs. A program of its own: what a process has loaded stays
// loaded.

#include "support/HostSession.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::EXAMPLE_DATABASE;
using KesTest::LastError;
using KesTest::TempFolder;

namespace {

TEST(MissingPlugins, HostComesUpAndIsToldWhatIsMissing) {
    const TempFolder folder;
    Framework::Init(folder.Path());
    EXPECT_EQ(LastError(), "none") << "a folder without plug-ins is no failure yet";
    NetMetadataProvider provider(EXAMPLE_DATABASE);
    EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");
    EXPECT_EQ(provider.GetSubsystems("any"), nullptr);
    EXPECT_EQ(LastError(), "1 SQLite Metadata provider plugin not found");
    provider.Refresh();
    FrameworkFacade facade(EXAMPLE_DATABASE);
    facade.OwningChip(std::make_shared<Chip>());
    EXPECT_FALSE(facade.LoadText("any", false));
    EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");

    EXPECT_FALSE(facade.SetValue(KesTest::SubsystemNamed("bt"), 0x1005, nullptr, 2, 1, 1, "3"));
    EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");
    EXPECT_FALSE(facade.LoadDefaults(KesTest::SubsystemNamed("bt")));

    std::filesystem::copy_file(std::string(KES_TEST_PLUGIN_DIR) + "/sqlite.kpm", folder / "sqlite.kpm");
    Framework::Init(folder.Path());
    FrameworkFacade half(EXAMPLE_DATABASE);
    half.OwningChip(std::make_shared<Chip>());
    EXPECT_FALSE(half.LoadText("any", false));
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
    half.LoadBlank();
    EXPECT_TRUE(half.GetValue(KesTest::SubsystemNamed("bt"), 0x1005, nullptr, 1).IsNull());
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
    EXPECT_FALSE(half.SaveText(folder / "a.ktf"));
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
}

}  // namespace
