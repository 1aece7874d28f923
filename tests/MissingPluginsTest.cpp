// A host whose plug-in folder lacks plug-ins. A separate program: plug-ins stay loaded in a process.

#include "support/HostSession.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::EXAMPLE_DATABASE;
using KesTest::LastError;
using KesTest::TempFolder;

namespace {

/// Every operation that needs a plug-in for chunk files or devices names it, even if no target is given.
void ExpectBinaryAndDevicePluginsMissing(FrameworkFacade& facade, const std::string& loadBinary) {
    const std::string packint = "1 Packint readerwriter plugin not found.";
    const std::string ostrel = "1 KLD770xDevice readerwriter plugin not found.";
    const std::string eeprom = "1 KesEeprom readerwriter plugin not found.";
    const std::string crs = "1 KesIsp readerwriter plugin not found.";
    using Target = const HostString&;
    const struct {
        std::string error;
        std::function<bool(Target)> run;
    } rows[] = {
        {loadBinary, [&](Target at) { return facade.LoadBinary(at, false); }},
        {packint, [&](Target at) { return facade.SaveBinary(at); }},
        {ostrel, [&](Target at) { return facade.LoadFromDeviceOstrel(at, false); }},
        {ostrel, [&](Target at) { return facade.SaveToDeviceOstrel(at, false); }},
        {ostrel, [&](Target at) { return facade.CreateKeyStore(at, DEVICE_TYPE_SMEM, 1, 512, 0, true); }},
        {eeprom, [&](Target at) { return facade.LoadFromDeviceKesEeprom(at, true); }},
        {eeprom, [&](Target at) { return facade.SaveToDeviceKesEeprom(at, 15, 1); }},
        {crs, [&](Target at) { return facade.LoadFromDeviceKesCrs(at, DEVICE_TYPE_ALL); }},
        {crs, [&](Target at) { return facade.SaveToDeviceKesCrs(at, true); }},
    };
    for (const auto& row : rows) {
        for (const char* target : {"any", ""}) {
            EXPECT_FALSE(row.run(target));
            EXPECT_EQ(LastError(), row.error);
        }
    }
}

TEST(MissingPlugins, HostStartsAndLearnsWhatIsMissing) {
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

    ExpectBinaryAndDevicePluginsMissing(facade, "1 sqlite metadata plugin not found.");

    EXPECT_FALSE(facade.SetValue(KesTest::SubsystemNamed("bt"), 0x1005, nullptr, 2, 1, 1, "3"));
    EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");
    EXPECT_FALSE(facade.LoadDefaults(KesTest::SubsystemNamed("bt")));

    std::filesystem::copy_file(std::string(KES_TEST_PLUGIN_DIR) + "/sqlite.kpm", folder / "sqlite.kpm");
    Framework::Init(folder.Path());
    FrameworkFacade half(EXAMPLE_DATABASE);
    half.OwningChip(std::make_shared<Chip>());
    EXPECT_FALSE(half.LoadText("any", false));
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
    ExpectBinaryAndDevicePluginsMissing(half, "1 Packint readerwriter plugin not found.");
    half.LoadBlank();
    EXPECT_TRUE(half.GetValue(KesTest::SubsystemNamed("bt"), 0x1005, nullptr, 1).IsNull());
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
    EXPECT_FALSE(half.SaveText(folder / "a.ktf"));
    EXPECT_EQ(LastError(), "1 KesText readerwriter plugin not found.");
}

}  // namespace
