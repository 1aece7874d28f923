// Single values that are rejected or empty leave no trace, in the configuration and in saved files.

#include "support/DeviceSession.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::ImageFamily;
using KesTest::LastError;
using KesTest::SubsystemNamed;

namespace {

constexpr std::int32_t MAX_ACL_LINKS = 0x1005;
constexpr std::int32_t LAYER = LayerIndexVals::Minimum;

class UndoneChanges : public KesTest::DeviceSession {
protected:
    static bool Set(FrameworkFacade& facade, const char* subsystem, std::int32_t device, std::int32_t store,
                    const char* value) {
        return facade.SetValue(SubsystemNamed(subsystem), MAX_ACL_LINKS, nullptr, device, store, LAYER,
                               value);
    }
    /// Values, places with their numbers of keys, stores, and whether subsystem types are mixed.
    static std::string State(FrameworkFacade& facade) {
        std::string state = Dump(facade) + " |";
        for (const auto& place : facade.GetPlaces()) {
            state += " " + std::to_string(place->SubsystemType()) + "/" + std::to_string(place->DeviceId()) +
                     "/" + std::to_string(place->StoreId()) + ":" + std::to_string(place->KeyCount());
        }
        state += " |";
        for (const auto& store : facade.GetStores())
            state += " " + std::to_string(store->DeviceId()) + "/" + std::to_string(store->StoreId());
        return state + (facade.IsMixedSubsystemTypes() ? " mixed" : "");
    }
};

TEST_F(UndoneChanges, ARejectedOrEmptyValueAddsNothing) {
    const auto facade = Holding("file=bt2\nmax_acl_links=3\nfile=bt3\nmax_acl_links=4\n");
    ASSERT_TRUE(
        facade->AddValue(SubsystemNamed("bt"), MAX_ACL_LINKS, nullptr, DEVICE_TYPE_EEPROM, 3, LAYER, "5"));
    const std::string before = State(*facade);
    const struct {
        const char* subsystem;
        std::int32_t device;
        std::int32_t store;
        const char* value;
        bool good;
    } rows[] = {
        {"bt", DEVICE_TYPE_EEPROM, 7, "nonsense", false},
        {"bt", DEVICE_TYPE_OTP, 1, "", true},
        {"wlan", DEVICE_TYPE_SMEM, 1, "1", false},
        {"bt", DEVICE_TYPE_EEPROM, 7, "5 trailing", false},
        {"bt", DEVICE_TYPE_EEPROM, 3, "6 trailing", false},
        {"bt", DEVICE_TYPE_EEPROM, 2, "6\nunknown_key=1", false},
        {"bt", DEVICE_TYPE_EEPROM, 3, "6\nmax_acl_links=\nmax_acl_links=7\nmax_acl_links=x", false},
        {"bt", DEVICE_TYPE_EEPROM, 3, "\nfile=bt2\nmax_acl_links=\nfile=bt9\nmax_acl_links=1\nfile=nothing",
         false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Set(*facade, row.subsystem, row.device, row.store, row.value), row.good) << row.value;
        EXPECT_EQ(State(*facade), before)
            << row.subsystem << " " << row.device << "/" << row.store << " " << row.value;
        KesTest::ClearErrors();
    }
    EXPECT_TRUE(Set(*facade, "bt", DEVICE_TYPE_EEPROM, 3, "\nfile=wlan4"));
    EXPECT_EQ(State(*facade), "1/15/2 4101=3 | 1/15/2:1 1/15/3:0 | 15/3 15/2")
        << "a place that was there stays";
    EXPECT_TRUE(Set(*facade, "bt", DEVICE_TYPE_EEPROM, 4, "7"));
    EXPECT_EQ(State(*facade), "1/15/2 4101=3; 1/15/4 4101=7 | 1/15/2:1 1/15/3:0 1/15/4:1 | 15/4 15/3 15/2");
}

TEST_F(UndoneChanges, APlaceWithoutKeysIsWrittenToTextsButNotToChunkFiles) {
    const auto facade = Holding("file=bt2\nmax_acl_links=3\nfile=bt4\n");
    ASSERT_TRUE(facade->SaveText(mFolder / "out.ktf"));
    EXPECT_NE(KesTest::ReadFile(mFolder / "out.ktf").find("file=bluetooth4"), std::string::npos)
        << KesTest::ReadFile(mFolder / "out.ktf");
    const std::string folder = mFolder / "chunks";
    ASSERT_TRUE(facade->SaveBinary(folder)) << LastError();
    EXPECT_TRUE(std::filesystem::exists(folder + "/bt-eeprom-0002.kcf"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/bt-eeprom-0004.kcf"));
    ASSERT_TRUE(Set(*facade, "bt", DEVICE_TYPE_EEPROM, 2, ""));
    ASSERT_TRUE(facade->SaveBinary(folder)) << LastError();
    EXPECT_FALSE(std::filesystem::exists(folder + "/bt-eeprom-0002.kcf")) << "its keys are gone";
}

TEST_F(UndoneChanges, APlaceWithoutKeysNeedsNoStoreOnADevice) {
    const std::string image = Image(ImageFamily::Kld, 65536);
    const auto facade = Holding(
        "subsystem=bt\ndevice=otp\nstore=1\nmax_acl_links=1\ndevice=smem\nstore=1\n"
        "max_acl_links=1\ndevice=otp\nstore=2\n");
    ASSERT_TRUE(Save(*facade, ImageFamily::Kld, image)) << LastError();
    const std::string saved = KesTest::ReadFile(image);
    const auto reader = Blank();
    ASSERT_TRUE(Load(*reader, ImageFamily::Kld, image)) << LastError();
    EXPECT_EQ(State(*reader), "1/1/1 4101=1; 1/2/1 4101=1 | 1/1/1:1 1/2/1:1 | 1/1 2/1");
    const auto empty = Holding(
        "subsystem=wlan\ndevice=otp\nstore=1\nsubsystem=bt\ndevice=otp\nstore=1\n"
        "max_acl_links=1\ndevice=smem\nstore=1\nmax_acl_links=1\n");
    ASSERT_TRUE(Save(*empty, ImageFamily::Kld, image)) << LastError();
    EXPECT_TRUE(KesTest::ReadFile(image) == saved)
        << "one-time-programmable memory takes no segment for nothing";
    ASSERT_TRUE(Set(*facade, "bt", DEVICE_TYPE_SMEM, 1, ""));
    ASSERT_TRUE(Save(*facade, ImageFamily::Kld, image)) << LastError();
    ASSERT_TRUE(Load(*reader, ImageFamily::Kld, image)) << LastError();
    EXPECT_EQ(Dump(*reader), "1/1/1 4101=1") << "a store that loses its keys is cleared";
}

TEST_F(UndoneChanges, AStoreSetThatLosesItsKeysIsCleared) {
    const std::string image = Image(ImageFamily::Isp, 65536);
    const auto facade = Holding("file=bt1\nmax_acl_links=3\n");
    ASSERT_TRUE(Save(*facade, ImageFamily::Isp, image)) << LastError();
    ASSERT_NE(Read(ImageFamily::Isp, image), "");
    ASSERT_TRUE(Set(*facade, "bt", DEVICE_TYPE_EEPROM, 1, ""));
    ASSERT_TRUE(Save(*facade, ImageFamily::Isp, image)) << LastError();
    EXPECT_EQ(Read(ImageFamily::Isp, image), "");
}

TEST_F(UndoneChanges, StoresKeepTheDataFromTheDevice) {
    const std::string image = Image(ImageFamily::Kld, 65536);
    ASSERT_TRUE(Blank()->CreateKeyStore(image, DEVICE_TYPE_SMEM, 5, 1024, 77, true)) << LastError();
    const auto facade = Blank();
    ASSERT_TRUE(Load(*facade, ImageFamily::Kld, image)) << LastError();
    const auto store = [&] {
        const auto only = *facade->GetStores().begin();
        return std::to_string(only->StoreId()) + " " + std::to_string(only->StoreSize()) + " " +
               std::to_string(only->StoreFreeSize()) + (only->Paired() ? " paired" : "");
    };
    const std::string before = store();
    ASSERT_NE(before.find("5 1024 "), std::string::npos) << before;
    ASSERT_TRUE(Set(*facade, "bt", DEVICE_TYPE_SMEM, 5, "2")) << LastError();
    EXPECT_EQ(store(), before);
}

}  // namespace
