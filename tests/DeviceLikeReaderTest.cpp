// Keys without a layer and without a metadata record, as read from a device. A separate program, since its
// plug-in replaces the text format.

#include "support/HostSession.h"

#include <gtest/gtest.h>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::SubsystemNamed;

namespace {

constexpr std::int32_t MAX_ACL_LINKS = 0x1005;
constexpr std::int32_t LARGE = static_cast<std::int32_t>(0x80000001);

TEST(DeviceLikeReader, ItsKeysAreDeviceDefaultsAndTakePrecedence) {
    const KesTest::TempFolder plugins;
    std::filesystem::copy_file(std::string(KES_TEST_PLUGIN_DIR) + "/sqlite.kpm", plugins / "sqlite.kpm");
    std::filesystem::copy_file(std::string(KES_TEST_BINARY_DIR) + "/tests/bare_reader.kpm",
                               plugins / "bare_reader.kpm");
    Framework::Init(plugins.Path());
    {
        FrameworkFacade facade(KesTest::EXAMPLE_DATABASE);
        facade.OwningChip(KesTest::ChipOf("ostrell_520_2_3"));
        const auto bt = SubsystemNamed("bt");
        ASSERT_TRUE(facade.LoadDefaults(bt)) << KesTest::LastError();
        EXPECT_TRUE(facade.HasDeviceDefaults());
        EXPECT_EQ(facade.GetDefault(bt, MAX_ACL_LINKS, nullptr),
                  HostString("\n# Links at a time\nmax_acl_links = 0x63\n"))
            << "the database says 7";
        EXPECT_EQ(facade.GetDefault(bt, LARGE, nullptr), HostString("\n2147483649 = 0x63\n"));
        EXPECT_TRUE(facade.HasAnyDefault(bt, LARGE));
        EXPECT_FALSE(facade.HasDefault(bt, LARGE)) << "not in the database";
        EXPECT_FALSE(facade.HasDefault(bt, LARGE, nullptr));

        const auto records = facade.GetPopulatedRawmodeMetadata(bt);
        ASSERT_EQ(records->Count(), 2U);
        const Metadata& record = *records->Item(LARGE);
        EXPECT_EQ(record.Name(), HostString("-2147483647"));
        EXPECT_EQ(record.Uid(), 0);
        EXPECT_TRUE(record.IsInternal());
        EXPECT_EQ(record.SimpleType(), SimpleElementTypes::None);
        EXPECT_EQ(record.Label(), HostString("Internal Key"));
        EXPECT_EQ(record.Description(),
                  HostString("Vemo internal key - do not modify unless advised by Vemo"));
        EXPECT_EQ(record.NumIndexes(), 0U);
    }
    Framework::Deinit();
}

}  // namespace
