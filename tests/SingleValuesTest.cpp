// Single keys: values, defaults, and keys that are not in the metadata, through the real plug-ins.

#include "support/HostSession.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::ChipOf;
using KesTest::EXAMPLE_DATABASE;
using KesTest::Indexes;
using KesTest::LastError;
using KesTest::SubsystemNamed;

namespace {

constexpr const char* HEADUNIT = "ostrell_520_2_3";
constexpr const char* HEADSET = "ostrell_310_1_7";
constexpr std::int32_t MAX_ACL_LINKS = 0x1005;
constexpr std::int32_t TX_POWER_CORRECTION = 0x1015;
constexpr std::int32_t LOCAL_NAME = 0x1002;
constexpr std::int32_t PIN_CODE = 0x1025;
constexpr std::int32_t LAYER = LayerIndexVals::Minimum;

class SingleValues : public KesTest::HostSession {
protected:
    explicit SingleValues(const char* chip = HEADUNIT) {
        mFacade.OwningChip(ChipOf(chip));
        mFacade.LoadBlank();
    }

    bool Set(std::int32_t psid, const HostString& value, std::int32_t device = DEVICE_TYPE_SMEM,
             std::int32_t store = 1) {
        return mFacade.SetValue(mBt, psid, nullptr, device, store, LAYER, value);
    }
    std::string Get(std::int32_t psid, const HostListRef<std::int32_t>& indexes = nullptr,
                    std::int32_t layer = LAYER) {
        const HostString text = mFacade.GetValue(mBt, psid, indexes, layer);
        return text.IsNull() ? "null" : text.ToNarrow();
    }

    FrameworkFacade mFacade{EXAMPLE_DATABASE};
    std::shared_ptr<Subsystem> mBt = SubsystemNamed("bt");
};

TEST_F(SingleValues, ASetValueIsReturnedInTheFormOfTheWriter) {
    EXPECT_FALSE(mFacade.HasValue());
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "0x05"));
    EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 5\n");
    EXPECT_TRUE(Set(MAX_ACL_LINKS, "6"));
    EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 6\n") << "replaced";

    ASSERT_TRUE(mFacade.SetValue(mBt, TX_POWER_CORRECTION, Indexes({39}), DEVICE_TYPE_OTP, 3, 7, "-4"));
    EXPECT_EQ(Get(TX_POWER_CORRECTION, Indexes({39})),
              "\n# Power correction of a channel\ntx_power_correction.39 = -4\n");
    EXPECT_EQ(Get(TX_POWER_CORRECTION), "null") << "an index is part of the key";
    EXPECT_EQ(Get(MAX_ACL_LINKS, Indexes({})), Get(MAX_ACL_LINKS)) << "no indexes, null or empty";

    EXPECT_TRUE(mFacade.HasValue());
    EXPECT_TRUE(mFacade.HasValue(mBt));
    EXPECT_FALSE(mFacade.HasValue(SubsystemNamed("wlan")));
    EXPECT_TRUE(mFacade.HasValue(mBt, TX_POWER_CORRECTION, LAYER)) << "by number, whatever the index";
    EXPECT_FALSE(mFacade.HasValue(mBt, TX_POWER_CORRECTION, LAYER, nullptr));
    EXPECT_TRUE(mFacade.HasValue(mBt, TX_POWER_CORRECTION, LAYER, Indexes({39})));
    EXPECT_FALSE(mFacade.HasValue(mBt, TX_POWER_CORRECTION, LAYER, Indexes({-1})));
    EXPECT_FALSE(mFacade.HasValue(SubsystemNamed("wlan"), MAX_ACL_LINKS, LAYER));
    for (const std::int32_t layer : {0, -1}) {
        EXPECT_FALSE(mFacade.HasValue(mBt, MAX_ACL_LINKS, layer));
        EXPECT_FALSE(mFacade.HasValue(mBt, MAX_ACL_LINKS, layer, nullptr));
        EXPECT_EQ(Get(MAX_ACL_LINKS, nullptr, layer), "null") << "content is no default";
    }
    for (const std::int32_t layer : {1, 7, 15, 16}) {
        EXPECT_TRUE(mFacade.HasValue(mBt, MAX_ACL_LINKS, layer, nullptr)) << layer;
        EXPECT_NE(Get(MAX_ACL_LINKS, nullptr, layer), "null") << layer;
    }
}

TEST_F(SingleValues, EachDeviceHasItsPlace) {
    const struct {
        std::int32_t device;
        std::int32_t store;
        std::string error;  ///< "none" if the value is accepted
    } rows[] = {
        {1, 0, "none"},
        {2, 5, "none"},
        {4, 65535, "none"},
        {15, 1, "none"},
        {15, 15, "none"},
        {15, 16,
         "0 \r\rline 1, column 10: Store out of range Store should be between 1 and 15\r"
         "line 2, column 1: Unknown device\r\r2 errors found"},
        {2, 65536,
         "0 \r\rline 3, column 11: Number too large\r"
         "line 4, column 1: Invalid configuration store\r\r2 errors found"},
        {0, 1, "0 Unexpected device"},
        {3, 1, "0 Unexpected device"},
        {5, 1, "0 Unexpected device"},
        {13, 1, "0 Unexpected device"},
        {-1, 1, "0 Unexpected device"},
    };
    for (const auto& row : rows) {
        mFacade.LoadBlank();
        EXPECT_EQ(Set(MAX_ACL_LINKS, "3", row.device, row.store), row.error == "none");
        EXPECT_EQ(LastError(), row.error) << row.device << ' ' << row.store;
        const auto values = mFacade.GetValues();
        ASSERT_EQ(values->size(), row.error == "none" ? 1U : 0U);
        if (values->empty()) continue;
        EXPECT_EQ(values->front()->DeviceId(), row.device);
        EXPECT_EQ(values->front()->StoreId(), row.store);
    }
}

TEST_F(SingleValues, ARejectedValueChangesNothingAndIsReported) {
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "3"));
    EXPECT_FALSE(mFacade.SetValue(mBt, MAX_ACL_LINKS, nullptr, 2, 1, 0, "4"));
    EXPECT_FALSE(mFacade.AddValue(mBt, MAX_ACL_LINKS, nullptr, 2, 1, -1, "4"));
    EXPECT_EQ(LastError(), "none") << "a layer is refused without a message";
    EXPECT_EQ(Get(PIN_CODE), "null");
    EXPECT_EQ(LastError(), "none") << "a key that is not there is no error";

    const struct {
        std::int32_t psid;
        const char* value;
        const char* error;
    } rows[] = {
        {MAX_ACL_LINKS, "300", "line 4, column 8: Number too large: max_acl_links"},
        {MAX_ACL_LINKS, "many", "line 4, column 6: Number expected"},
        {MAX_ACL_LINKS, "8", "must be between"},
        {-5, "1", "line 4, column 1: A name must be given"},
        {0x7777, "1", "line 4, column 7: Unknown name"},
        {LOCAL_NAME, "\"a", "line 5, column 1: "},
    };
    for (const auto& row : rows) {
        KesTest::ClearErrors();
        EXPECT_FALSE(Set(row.psid, row.value)) << row.psid << '=' << row.value;
        EXPECT_NE(LastError().find(row.error), std::string::npos) << LastError();
        EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 3\n");
        EXPECT_EQ(mFacade.GetValues()->size(), 1U);
    }
    EXPECT_TRUE(Set(MAX_ACL_LINKS, "4"));
    EXPECT_NE(LastError(), "none") << "a good operation clears no earlier error";
}

TEST_F(SingleValues, EmptyValuesAndNewlinesAreReadAsInAText) {
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "3"));
    EXPECT_TRUE(Set(MAX_ACL_LINKS, ""));
    EXPECT_FALSE(mFacade.HasValue(mBt, MAX_ACL_LINKS, LAYER, nullptr)) << "an empty value removes the key";
    EXPECT_TRUE(mFacade.AddValue(mBt, MAX_ACL_LINKS, nullptr, 2, 1, LAYER, ""));
    EXPECT_TRUE(mFacade.HasValue(mBt, MAX_ACL_LINKS, LAYER, nullptr)) << "added without a value";
    EXPECT_EQ(mFacade.GetValues()->front()->Value(), HostString(""));

    mFacade.LoadBlank();
    EXPECT_TRUE(Set(MAX_ACL_LINKS, "3\nmax_sco_links = 1"));
    EXPECT_EQ(mFacade.GetValues()->size(), 2U) << "a line of its own";

    EXPECT_TRUE(mFacade.AddValue(mBt, MAX_ACL_LINKS, nullptr, 2, 1, LAYER, "5"));
    EXPECT_EQ(mFacade.GetValues()->size(), 3U);
    EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 5\n") << "the newest of several";
    EXPECT_TRUE(Set(MAX_ACL_LINKS, "6"));
    EXPECT_EQ(mFacade.GetValues()->size(), 2U) << "a set replaces all of them";
}

TEST_F(SingleValues, OfSeveralPlacesTheOneWrittenLastIsUsed) {
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "3", DEVICE_TYPE_OTP, 1));
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "4", DEVICE_TYPE_SMEM, 1));
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "5", DEVICE_TYPE_OTP, 1));
    EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 5\n");
    EXPECT_FALSE(mFacade.RemoveValue(mBt, MAX_ACL_LINKS, nullptr, DEVICE_TYPE_OTP, 2));
    EXPECT_TRUE(mFacade.RemoveValue(mBt, MAX_ACL_LINKS, nullptr, DEVICE_TYPE_OTP, 1));
    EXPECT_FALSE(mFacade.RemoveValue(mBt, MAX_ACL_LINKS, nullptr, DEVICE_TYPE_OTP, 1));
    EXPECT_EQ(Get(MAX_ACL_LINKS), "\n# Links at a time\nmax_acl_links = 4\n");
}

TEST_F(SingleValues, ARawValueNeedsNoMetadata) {
    ASSERT_TRUE(Set(0x7777, "% 0x12 [ 01 02 ] %"));
    EXPECT_NE(Get(0x7777), "null");
    const auto values = mFacade.GetValues();
    EXPECT_TRUE(values->front()->Name().IsNull());
    EXPECT_EQ(values->front()->Value(), HostString("% 0x12 [ 01 02 ] %"));
    EXPECT_TRUE(mFacade.RemoveValue(mBt, 0x7777, nullptr, DEVICE_TYPE_SMEM, 1));
    EXPECT_FALSE(mFacade.HasValue());
}

TEST_F(SingleValues, AValueInTheListSetsTheSameKey) {
    ASSERT_TRUE(mFacade.LoadText(KesTest::EXAMPLE_FOLDER + "/headunit-production.ktf", false));
    FrameworkFacade copy(EXAMPLE_DATABASE);
    copy.OwningChip(mFacade.OwningChip());
    copy.LoadBlank();
    for (const auto& key : mFacade.GetValues()) {
        const auto subsystem =
            std::make_shared<Subsystem>(Subsystem::NameOf(key->SubsystemType()), "", "", "", "", "", "");
        const auto indexes = std::make_shared<KeyValue::IndexList>(key->Indexes());
        EXPECT_TRUE(copy.SetValue(subsystem, key->Psid(), indexes, key->DeviceId(), key->StoreId(), LAYER,
                                  key->Value()))
            << key->Name() << " = " << key->Value() << ": " << LastError();
    }
    EXPECT_EQ(mFacade.FirstDifference(copy), HostString()) << mFacade.FirstDifference(copy);
}

TEST_F(SingleValues, BytesThatAreNotUtf8ArePreserved) {
    FrameworkFacade other(EXAMPLE_DATABASE);
    other.OwningChip(ChipOf(HEADUNIT));
    other.LoadBlank();
    const auto set = [&](FrameworkFacade& facade, const std::string& value) {
        return facade.SetValueBytes(mBt, LOCAL_NAME, nullptr, DEVICE_TYPE_SMEM, 1, LAYER, value);
    };
    ASSERT_TRUE(set(mFacade, "\"a\xFF\"") && set(other, "\"a\xFE\"")) << LastError();
    EXPECT_NE(mFacade.FirstDifference(other), HostString());
    const auto mine = mFacade.GetValues()->front();
    const auto theirs = other.GetValues()->front();
    EXPECT_EQ(mine->ValueBytes(), "\"a\xFF\"");
    EXPECT_EQ(mine->Value(), HostString("\"a\uFFFD\""));
    EXPECT_EQ(mine->Value(), theirs->Value());
    EXPECT_NE(mine->ValueBytes(), theirs->ValueBytes());
    ASSERT_TRUE(set(other, mine->ValueBytes()));
    EXPECT_TRUE(mFacade.FirstDifference(other).IsNull()) << "what was given can be set";

    ASSERT_TRUE(set(mFacade, "[ 61 FF ]")) << "the writer of single values gives octets";
    std::string text = "untouched";
    EXPECT_FALSE(mFacade.GetValueBytes(mBt, MAX_ACL_LINKS, nullptr, LAYER, text));
    EXPECT_EQ(text, "untouched");
    ASSERT_TRUE(mFacade.GetValueBytes(mBt, LOCAL_NAME, nullptr, LAYER, text));
    EXPECT_EQ(HostString(text), mFacade.GetValue(mBt, LOCAL_NAME, nullptr, LAYER));
}

TEST_F(SingleValues, DefaultsAreSeparateFromTheConfiguration) {
    EXPECT_FALSE(mFacade.HasDefault(mBt, MAX_ACL_LINKS)) << "nothing was loaded";
    EXPECT_TRUE(mFacade.GetDefault(mBt, MAX_ACL_LINKS, nullptr).IsNull());
    ASSERT_TRUE(mFacade.LoadDefaults(mBt)) << LastError();
    const std::size_t count = mFacade.GetDefaultValues()->size();
    EXPECT_TRUE(mFacade.LoadDefaults(mBt));
    EXPECT_EQ(mFacade.GetDefaultValues()->size(), count) << "loaded again, not twice there";
    EXPECT_FALSE(mFacade.HasValue());
    EXPECT_EQ(Get(MAX_ACL_LINKS), "null") << "a default is no value";

    const auto wlan = SubsystemNamed("wlan");
    const struct {
        std::shared_ptr<Subsystem> subsystem;
        std::int32_t psid;
        HostListRef<std::int32_t> indexes;
        bool any, byNumber, byKey;
        const char* text;  ///< null for none
    } rows[] = {
        {mBt, MAX_ACL_LINKS, nullptr, true, true, true, "\n# Links at a time\nmax_acl_links = 7\n"},
        {mBt, MAX_ACL_LINKS, Indexes({}), true, true, true, "\n# Links at a time\nmax_acl_links = 7\n"},
        {mBt, TX_POWER_CORRECTION, nullptr, true, true, false, nullptr},
        {mBt, TX_POWER_CORRECTION, Indexes({78}), true, true, true,
         "\n# Power correction of a channel\ntx_power_correction.78 = -3\n"},
        {mBt, TX_POWER_CORRECTION, Indexes({77}), true, true, false, nullptr},
        {mBt, PIN_CODE, nullptr, false, false, false, nullptr},
        {wlan, MAX_ACL_LINKS, nullptr, false, false, false, nullptr},
        {nullptr, MAX_ACL_LINKS, nullptr, false, false, false, nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mFacade.HasAnyDefault(row.subsystem, row.psid), row.any) << row.psid;
        EXPECT_EQ(mFacade.HasDefault(row.subsystem, row.psid), row.byNumber) << row.psid;
        EXPECT_EQ(mFacade.HasDefault(row.subsystem, row.psid, row.indexes), row.byKey) << row.psid;
        EXPECT_EQ(mFacade.GetDefault(row.subsystem, row.psid, row.indexes), HostString(row.text));
    }
    EXPECT_FALSE(mFacade.HasDeviceDefaults());
    EXPECT_EQ(LastError(), "none");

    ASSERT_TRUE(Set(MAX_ACL_LINKS, "7"));
    ASSERT_TRUE(Set(LOCAL_NAME, "\"Car\""));
    ASSERT_TRUE(Set(PIN_CODE, "\"0000\""));
    std::string states;
    for (const auto& key : mFacade.GetValues()) {
        states += key->Name().ToNarrow() + " " + key->Value().ToNarrow() + "/" +
                  (key->Default().IsNull() ? "none" : key->Default().ToNarrow()) +
                  (key->IsDefault() ? " same\n" : "\n");
    }
    EXPECT_EQ(states, "max_acl_links 7/7 same\nlocal_name \"Car\"/\"OTR520\"\npin_code \"0000\"/none\n");
}

TEST_F(SingleValues, ReloadingDefaultsReplacesThemAndContinuesAfterAFailure) {
    const auto list = [](std::initializer_list<const char*> names) {
        auto subsystems = std::make_shared<std::vector<std::shared_ptr<Subsystem>>>();
        for (const char* name : names) subsystems->push_back(SubsystemNamed(name));
        return subsystems;
    };
    ASSERT_TRUE(mFacade.ReloadKnownDefaults(list({"bt", "audio"})));
    EXPECT_TRUE(mFacade.ReloadKnownDefaults(list({"wlan"})));
    EXPECT_FALSE(mFacade.HasDefault(mBt, MAX_ACL_LINKS)) << "the ones from before are gone";
    EXPECT_TRUE(mFacade.ReloadKnownDefaults(list({})));
    EXPECT_TRUE(mFacade.GetDefaultValues()->empty());
    mFacade.OwningChip(mFacade.OwningChip());
    EXPECT_TRUE(mFacade.ReloadKnownDefaults(list({"bt"})));
    mFacade.OwningChip(mFacade.OwningChip());
    EXPECT_FALSE(mFacade.HasDefault(mBt, MAX_ACL_LINKS)) << "a new chip has none";

    // A database whose second subsystem does not match its digest.
    const std::string damaged = mFolder / "damaged.db";
    std::filesystem::copy_file(EXAMPLE_DATABASE, damaged);
    std::string bytes = KesTest::ReadFile(damaged);
    const std::size_t at = bytes.find("Settings of the receive chain");
    ASSERT_NE(at, std::string::npos);
    for (std::size_t i = at; i != std::string::npos; i = bytes.find("Settings of the receive chain", i + 1))
        bytes[i] = 'X';
    mFolder.Write("damaged.db", bytes);
    FrameworkFacade facade(damaged);
    facade.OwningChip(mFacade.OwningChip());
    facade.LoadBlank();
    EXPECT_FALSE(facade.ReloadKnownDefaults(list({"curator", "bt", "wlan"})));
    EXPECT_NE(LastError().find("damaged.db"), std::string::npos) << LastError();
    EXPECT_FALSE(facade.HasAnyDefault(mBt, MAX_ACL_LINKS));
    EXPECT_EQ(facade.GetDefaultValues()->front()->SubsystemType(), SUBSYSTEM_TYPE_CURATOR);
    EXPECT_EQ(facade.GetDefaultValues()->back()->SubsystemType(), SUBSYSTEM_TYPE_WLAN);
}

class RawMode : public SingleValues {
protected:
    RawMode() : SingleValues(HEADSET) {}
};

TEST_F(RawMode, KeysThatAreNotInTheMetadataGetARecord) {
    EXPECT_EQ(mFacade.GetPopulatedRawmodeMetadata(mBt)->Count(), 0U);
    const std::string text = mFolder.Write(
        "a.ktf",
        "file=bt1\nmax_acl_links = 3\n4480 = % 1 %\n0x90000000 = % 2 %\n"
        "file=bt2\n4480 = % 7 8 %\n"
        "file=psaudio1\nprompt_gain = -8\nuser_eq_gains.1.0 = 3\nuser_eq_gains.1.1 = 2\n77 = % 1 %\n"
        "file=ble1\n78 = % 1 %\n");
    ASSERT_TRUE(mFacade.LoadText(text, false)) << LastError();
    const auto records = mFacade.GetPopulatedRawmodeMetadata(mBt);
    ASSERT_EQ(records->Count(), 2U) << "known keys have none, and one number has one";
    for (const std::int32_t psid : {4480, static_cast<std::int32_t>(0x90000000)}) {
        ASSERT_TRUE(records->Contains(psid));
        const Metadata& record = *records->Item(psid);
        EXPECT_EQ(record.Name(), HostString(std::to_string(psid)));
        EXPECT_EQ(record.Psid(), psid);
        EXPECT_EQ(record.Label(), HostString("Internal Key"));
        EXPECT_EQ(record.Description(),
                  HostString("Vemo internal key - do not modify unless advised by Vemo"));
        EXPECT_EQ(record.AccessRight(), AccessRights::ReadWrite);
        EXPECT_EQ(record.MetadataType(), MetadataTypes::Unknown);
    }

    const auto psaudio = SubsystemNamed("psaudio");
    const auto all = mFacade.GetPopulatedRawmodeMetadata(psaudio);
    ASSERT_EQ(all->Count(), 3U);
    const Metadata& known = *all->Item(40987);
    EXPECT_EQ(known.Name(), HostString("prompt_gain"));
    EXPECT_EQ(known.AccessRight(), AccessRights::ReadWrite);
    EXPECT_EQ(known.MetadataType(), MetadataTypes::Simple);
    EXPECT_EQ(known.SimpleType(), SimpleElementTypes::Int8);
    EXPECT_EQ(known.Details(), nullptr);
    const Metadata& indexed = *all->Item(40970);
    EXPECT_EQ(indexed.NumIndexes(), 2U);
    EXPECT_TRUE(indexed.TableIndexes()->empty()) << "no table indexes are added";
    EXPECT_EQ(all->Item(77)->Label(), HostString("Internal Key"));

    // Defaults are included as well, after the configuration.
    ASSERT_TRUE(mFacade.LoadDefaults(psaudio));
    EXPECT_GT(mFacade.GetPopulatedRawmodeMetadata(psaudio)->Count(), 30U);
    EXPECT_EQ(mFacade.GetPopulatedRawmodeMetadata(SubsystemNamed("audio"))->Count(), 0U);
    EXPECT_EQ(mFacade.GetPopulatedRawmodeMetadata(nullptr)->Count(), 0U);
    EXPECT_EQ(LastError(), "none");
}

TEST_F(SingleValues, ReadOnlyKeysOfPsaudioAreReturnedAsWritable) {
    NetMetadataProvider provider(EXAMPLE_DATABASE);
    mFacade.OwningChip(ChipOf(HEADSET));
    const auto serial = provider.GetMetadataByName(HEADSET, SUBSYSTEM_TYPE_PSAUDIO, "tuning_checksum");
    ASSERT_NE(serial, nullptr);
    EXPECT_NE(serial->AccessRight(), AccessRights::ReadWrite);
    ASSERT_TRUE(mFacade.SetValue(SubsystemNamed("psaudio"), serial->Psid(), nullptr, 2, 1, LAYER, "1"))
        << LastError();
    EXPECT_EQ(
        mFacade.GetPopulatedRawmodeMetadata(SubsystemNamed("psaudio"))->Item(serial->Psid())->AccessRight(),
        AccessRights::ReadWrite);
}

TEST_F(SingleValues, ADisposedFacadeReturnsNothing) {
    ASSERT_TRUE(Set(MAX_ACL_LINKS, "3"));
    mFacade.Dispose();
    EXPECT_FALSE(mFacade.HasValue() || mFacade.HasValue(mBt) || mFacade.HasValue(mBt, MAX_ACL_LINKS, 1));
    EXPECT_EQ(Get(MAX_ACL_LINKS), "null");
    EXPECT_FALSE(Set(MAX_ACL_LINKS, "3"));
    EXPECT_FALSE(mFacade.LoadDefaults(mBt) || mFacade.HasDeviceDefaults());
    EXPECT_EQ(mFacade.GetValues(), nullptr);
    EXPECT_EQ(mFacade.GetPopulatedRawmodeMetadata(mBt)->Count(), 0U);
}

}  // namespace
