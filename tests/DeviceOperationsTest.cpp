// Which calls the plug-ins of devices receive, in which order, and how their results are used.

#include "support/Recording.h"

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::LastError;

namespace {

using Facade = FrameworkFacade;
constexpr const char* BEFORE = "local_name=\"car\" max_acl_links=5 | ";
constexpr const char* EMPTY = "| ";
constexpr const char* READ_ONE = "max_acl_links=% 0x01 % | ";
constexpr const char* READ_BOTH = "max_acl_links=% 0x01 % | max_acl_links=% 0x02 % ";

class DeviceOperations : public KesTest::RecordedSession {
protected:
    static std::string Loading(const std::string& reader, const std::vector<std::string>& tags) {
        std::string calls = "reader " + reader + "\nprovider\nobserver\n";
        for (const std::string& tag : tags) {
            const bool second = &tag != &tags.front();
            if (second) calls += "observer\n";
            calls += "read chip=ostrell_520_2_3 filetype=1";
            if (second) calls += " subsystemtype=1 device=2";
            calls += " insertmode=overwrite" + tag + "\n";
        }
        return calls + "delete\n";
    }
    static std::string Saving(const std::string& writer, const std::string& tags) {
        return "writer " + writer + "\nprovider\nbegin chip=ostrell_520_2_3 filetype=1" + tags +
               "\nkey 4098\nkey 4101\nend\ndelete\n";
    }
    static std::function<bool(Facade&)> LoadCrs(const char* connection, std::int32_t filter) {
        return [=](Facade& facade) {
            return facade.LoadFromDeviceKesCrs(connection, static_cast<DeviceNvsTypes>(filter));
        };
    }
    static std::function<bool(Facade&)> Create(std::int32_t location, std::int32_t id, bool paired,
                                               const char* connection = "dev") {
        return [=](Facade& facade) {
            return facade.CreateKeyStore(connection, static_cast<DeviceNvsTypes>(location), id, 512, 65538,
                                         paired);
        };
    }
};

TEST_F(DeviceOperations, LoadsReplaceOrMergeAndFilter) {
    const std::string says = "0 the device says no";
    const std::string second = " storesetfilter=14";
    const Row rows[] = {
        {[](Facade& f) { return f.LoadFromDeviceOstrel("dev", false); }, true, "none", READ_ONE,
         Loading("KLD770xDevice 'dev' true", {""})},
        {[](Facade& f) { return f.LoadFromDeviceOstrel("dev", true); }, true, "none",
         "local_name=\"car\" max_acl_links=% 0x01 % | ", Loading("KLD770xDevice 'dev' true", {""})},
        {[](Facade& f) { return f.LoadFromDeviceOstrel("error fail", true); }, false, says, BEFORE,
         Loading("KLD770xDevice 'error fail' true", {""})},
        {[](Facade& f) { return f.LoadFromDeviceOstrel("null", false); }, false,
         "1 KLD770xDevice readerwriter plugin not found.", EMPTY, "reader KLD770xDevice 'null' true\n"},
        {[](Facade& f) { return f.LoadFromDeviceOstrel("", true); }, false, "0 no connection is given",
         BEFORE, "reader KLD770xDevice '' true\n"},
        {[](Facade& f) { return f.LoadFromDeviceKesEeprom("dev", false); }, true, "none", READ_ONE,
         Loading("KesEeprom 'dev' null", {""})},
        {[](Facade& f) { return f.LoadFromDeviceKesEeprom("null", true); }, false,
         "1 KesEeprom readerwriter plugin not found.", BEFORE, "reader KesEeprom 'null' null\n"},
        {[](Facade& f) { return f.LoadFromDeviceKesEeprom(nullptr, false); }, false,
         "0 no connection is given", EMPTY, "reader KesEeprom '' null\n"},
        {LoadCrs("dev", 2), true, "none", READ_ONE, Loading("KesIsp 'dev' null", {" storesetfilter=2"})},
        {LoadCrs("dev", 14), true, "none", READ_ONE, Loading("KesIsp 'dev' null", {second})},
        {LoadCrs("dev", 7), true, "none", READ_BOTH, Loading("KesIsp 'dev' null", {"", second})},
        {LoadCrs("dev", -1), true, "none", READ_BOTH, Loading("KesIsp 'dev' null", {"", second})},
        {LoadCrs("dev", 15), true, "none", READ_BOTH,
         Loading("KesIsp 'dev' null", {" storesetfilter=15", second})},
        {LoadCrs("fail", 15), false, "none", EMPTY,
         "reader KesIsp 'fail' null\nprovider\nobserver\nread chip=ostrell_520_2_3 filetype=1 "
         "insertmode=overwrite storesetfilter=15\nobserver\ndelete\n"},
        {LoadCrs("fail-second", 7), false, "none", READ_ONE,
         Loading("KesIsp 'fail-second' null", {"", second})},
        {LoadCrs("null", 2), false, "1 KesIsp readerwriter plugin not found.", EMPTY,
         "reader KesIsp 'null' null\n"},
    };
    for (const Row& row : rows) Check(row);
    EXPECT_FALSE(mFacade->HasDeviceDefaults());
    EXPECT_TRUE(mFacade->LoadFromDeviceKesCrs("dev", DEVICE_TYPE_ALL));
    EXPECT_TRUE(mFacade->HasDeviceDefaults());
    EXPECT_TRUE(mFacade->LoadFromDeviceKesCrs("dev", DEVICE_TYPE_OTP));
    EXPECT_TRUE(mFacade->HasDeviceDefaults()) << "only a load of them touches the defaults";
}

TEST_F(DeviceOperations, SavesTellThePlugInWhatToDo) {
    const std::string folder = " mode=dir insertmode=overwrite";
    const Row rows[] = {
        {[](Facade& f) { return f.SaveToDeviceOstrel("dev", true); }, true, "none", BEFORE,
         Saving("KLD770xDevice 'dev' true", "")},
        {[](Facade& f) { return f.SaveToDeviceOstrel("dev", false); }, true, "none", BEFORE,
         Saving("KLD770xDevice 'dev' false", "")},
        {[](Facade& f) { return f.SaveToDeviceOstrel("error", false); }, false, "0 the device says no",
         BEFORE, Saving("KLD770xDevice 'error' false", "")},
        {[](Facade& f) { return f.SaveToDeviceOstrel("null", false); }, false,
         "1 KLD770xDevice readerwriter plugin not found.", BEFORE, "writer KLD770xDevice 'null' false\n"},
        {[](Facade& f) { return f.SaveToDeviceKesEeprom("dev", 15, -1); }, true, "none", BEFORE,
         "writer KesEeprom 'dev' null\nprovider\nbegin chip=ostrell_520_2_3 filetype=1 subsystemtype=-1" +
             folder + " eepromsizeexp=15 eepromi2cmask=-1\nkey 4098\nkey 4101\nend\ndelete\n"},
        {[](Facade& f) { return f.SaveToDeviceKesEeprom("null", 0, 0); }, false,
         "1 KesEeprom readerwriter plugin not found.", BEFORE, "writer KesEeprom 'null' null\n"},
        {[](Facade& f) { return f.SaveToDeviceKesCrs("dev", false); }, true, "none", BEFORE,
         Saving("KesIsp 'dev' null", folder)},
        {[](Facade& f) { return f.SaveToDeviceKesCrs("dev", true); }, true, "none", BEFORE,
         Saving("KesIsp 'dev' null", folder + " resetdeviceafteruse=true")},
        {[](Facade& f) { return f.SaveToDeviceKesCrs("", true); }, false, "0 no connection is given", BEFORE,
         "writer KesIsp '' null\n"},
        {[](Facade& f) { return f.SaveToDeviceKesCrs("null", true); }, false,
         "1 KesIsp readerwriter plugin not found.", BEFORE, "writer KesIsp 'null' null\n"},
    };
    for (const Row& row : rows) Check(row);
}

TEST_F(DeviceOperations, AStoreIsCreatedWherePossible) {
    const std::string refused = "1 KLD770xDevice NVS location does not support creating store.";
    const std::string unpaired = "1 KLD770xDevice NVS location does not support creating a paired store.";
    const auto made = [](const std::string& connection, const std::string& store) {
        return "manager KLD770xDevice '" + connection + "' null\ncreate device " + store + "\ndelete\n";
    };
    const Row rows[] = {
        {Create(0, 1, false), false, refused, BEFORE, ""},
        {Create(3, 1, true), false, refused, BEFORE, ""},
        {Create(15, 1, false), false, refused, BEFORE, ""},
        {Create(1, 1, true), false, unpaired, BEFORE, ""},
        {Create(4, 1, true), false, unpaired, BEFORE, ""},
        {Create(1, 65537, false), true, "none", BEFORE, made("dev", "1 store 1 size 512 application 2")},
        {Create(2, 5, true), true, "none", BEFORE, made("dev", "2 store 5 size 512 application 2 paired")},
        {Create(4, 5, false), true, "none", BEFORE, made("dev", "4 store 5 size 512 application 2")},
        {Create(2, 5, true, "error"), false, "0 the device says no", BEFORE,
         made("error", "2 store 5 size 512 application 2 paired")},
        {Create(2, 5, false, "null"), false, "1 KLD770xDevice readerwriter plugin not found.", BEFORE,
         "manager KLD770xDevice 'null' null\n"},
        {Create(2, 5, false, ""), false, "0 no connection is given", BEFORE,
         "manager KLD770xDevice '' null\n"},
    };
    for (const Row& row : rows) Check(row);
}

TEST_F(DeviceOperations, StoresOfTheLastLoadAreListed) {
    ASSERT_TRUE(mFacade->LoadBlank());
    EXPECT_TRUE(mFacade->GetStores()->empty());
    ASSERT_TRUE(mFacade->LoadFromDeviceOstrel("stores", false));
    ASSERT_TRUE(mFacade->CreateKeyStore("dev", DEVICE_TYPE_MTP, 9, 512, 0, false));
    std::string seen;
    for (const auto& store : mFacade->GetStores()) {
        for (const std::int64_t number :
             {std::int64_t{store->DeviceId()}, std::int64_t{store->StoreId()},
              std::int64_t{store->StoreSize()}, std::int64_t{store->StoreFreeSize()}}) {
            seen += std::to_string(number) + " ";
        }
        seen += store->Paired() ? "paired, " : "single, ";
    }
    EXPECT_EQ(seen, "1 3 256 100 single, 2 1 4096 -1 paired, ");
    ASSERT_TRUE(mFacade->LoadFromDeviceKesEeprom("dev", false));
    EXPECT_TRUE(mFacade->GetStores()->empty());
}

TEST_F(DeviceOperations, WithoutAChipOrReleasedTheyFailWithAReason) {
    const std::function<bool(Facade&)> operations[] = {
        [](Facade& f) { return f.LoadBinary("dev", false); },
        [](Facade& f) { return f.SaveBinary("dev"); },
        [](Facade& f) { return f.LoadFromDeviceOstrel("dev", false); },
        [](Facade& f) { return f.LoadFromDeviceKesEeprom("dev", true); },
        LoadCrs("dev", 7),
        [](Facade& f) { return f.SaveToDeviceOstrel("dev", false); },
        [](Facade& f) { return f.SaveToDeviceKesEeprom("dev", 1, 1); },
        [](Facade& f) { return f.SaveToDeviceKesCrs("dev", true); },
    };
    FrameworkFacade bare(KesTest::EXAMPLE_DATABASE);
    FrameworkFacade released(KesTest::EXAMPLE_DATABASE);
    released.OwningChip(KesTest::ChipOf(KesTest::LABEL));
    released.Dispose();
    for (const auto& run : operations) {
        EXPECT_FALSE(run(bare));
        EXPECT_EQ(LastError(), "0 no chip is set");
        EXPECT_FALSE(run(released));
        EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");
    }
    EXPECT_TRUE(Create(2, 1, false)(bare)) << "a store can be made without one";
    EXPECT_TRUE(Create(2, 1, false)(released));
}

}  // namespace
