// The API as a host sees it: strings, maps, records, start-up, errors, metadata queries, the facade.

#include "support/HostSession.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::ChipOf;
using KesTest::ClearErrors;
using KesTest::EXAMPLE_DATABASE;
using KesTest::LastError;
using KesTest::TempFolder;

namespace {

constexpr const char* LABEL = "ostrell_520_2_3";

TEST(HostString, DistinguishesNullFromEmptyAndReplacesInvalidUnicode) {
    using namespace std::string_literals;
    EXPECT_NE(HostString(), HostString(""));
    EXPECT_TRUE(HostString(static_cast<const char*>(nullptr)).IsNull());
    EXPECT_EQ(Framework::GetString(HostString()), "");
    const struct {
        HostString text;
        std::string narrow;
    } rows[] = {
        {HostString("grün"), "grün"},
        {HostString("a\0b"s), "a"},
        {HostString(u"a\0b"s), "a"},
        {HostString("\xF0\x9F\x94\x8A"), "\xF0\x9F\x94\x8A"},
        {HostString(u"\xD83D\xDD0A"s), "\xF0\x9F\x94\x8A"},
        {HostString(u"\xD83D"s), "\xEF\xBF\xBD"},
        {HostString(u"\xDD0A\xD83D"s), "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {HostString("a\xFF"
                    "b"),
         "a\xEF\xBF\xBD"
         "b"},
        {HostString("cut \xE2\x82"), "cut \xEF\xBF\xBD"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.text.ToNarrow(), row.narrow);
}

TEST(HostMap, IteratesInInsertionOrderAndRejectsADuplicateKey) {
    HostMap<HostString, int> map;
    map.Add("b", 2);
    map.Add("a", 1);
    EXPECT_THROW(map.Add("b", 3), std::invalid_argument);
    EXPECT_THROW(map.Item("c"), std::out_of_range);
    EXPECT_EQ(map.Item("b"), 2);
    EXPECT_EQ(map.Count(), 2U);
    EXPECT_EQ(map.begin()->first, HostString("b"));
}

TEST(Records, ReturnTheTextNullAsNull) {
    const auto record = [](const char* name, std::uint32_t indexes) {
        return Metadata(1, 2, name, "", SimpleElementTypes::UInt8, AccessRights::ReadOnly, false, false, 0, 0,
                        "NULL", 0, 1, VemoKesConfigTools::METADATA_TYPE_SIMPLE, "", "", "", "", "", indexes);
    };
    EXPECT_TRUE(record("NULL", 0).Name().IsNull());
    EXPECT_EQ(record("null", 0).Name(), HostString("null"));
    EXPECT_TRUE(record("a", 0).Description().IsNull());
    EXPECT_EQ(record("a", 0).Label(), HostString("")) << "empty stays empty";
    EXPECT_EQ(record("a", 0).TableIndexes(), nullptr);
    EXPECT_TRUE(record("a", 1).TableIndexes()->empty());

    const MetadataDetails details("T");
    EXPECT_EQ(details.Enums(), nullptr);
    EXPECT_EQ(details.StructFields(), nullptr);
    EXPECT_NE(details.GetEnums(), nullptr);
    EXPECT_EQ(Store().StoreFreeSize(), Store::INVALID_STORE_SIZE);
    TableIndex index("i", 0, 1, TableIndex::INDEX_TYPE_ENUM);
    index.AddEnum("x", 1);
    EXPECT_THROW(index.AddEnum("x", 2), std::invalid_argument);
    EXPECT_EQ(index.EnumValue("x"), 1U);
    EXPECT_THROW(static_cast<void>(index.EnumValue("y")), std::out_of_range);
}

TEST(Records, TraceTheirConstructors) {
    struct Watcher final : VemoKesConfigTools::CMessageHandlerObserver {
        Watcher() { VemoKesConfigTools::CTheMsgHnd::AddObserver(*this); }
        ~Watcher() override {
            VemoKesConfigTools::CTheMsgHnd::RemoveObserver(*this);
            VemoKesConfigTools::CTheMsgHnd::ActivateDebug(false);
        }
        void OnTrace(const std::string& line) override {
            const std::size_t at = line.find("-> VEMO::Kes::ConfigurationTools::");
            if (at != std::string::npos && line.starts_with("[6/0]")) {
                const std::size_t from = line.rfind("::") + 2;
                names += line.substr(from, line.find(' ', from) - from) + " ";
            }
        }
        std::string names;
    } watcher;
    VemoKesConfigTools::CTheMsgHnd::ActivateDebug(true);
    const Chip chip;
    const Subsystem subsystem;
    const Store store;
    const TableIndex index("", 0, 0, TableIndex::INDEX_TYPE_INT);
    const StructField field(nullptr, 0, 0);
    const MetadataDetails details("");
    const Metadata metadata(0, 0, "", "", SimpleElementTypes::None, AccessRights::ReadWrite, false, false, 0,
                            0, "", 0, 0, VemoKesConfigTools::METADATA_TYPE_UNKNOWN, "", "", "", "", "", 0U);
    EXPECT_EQ(watcher.names, "Chip Subsystem Store TableIndex StructField MetadataDetails Metadata ");
}

TEST(Records, TranslateTheWordsOfTheMetadata) {
    const struct {
        const char* text;
        SimpleElementTypes type;
    } types[] = {{"uint8", SimpleElementTypes::UInt8},   {"int", SimpleElementTypes::Int32},
                 {"integer", SimpleElementTypes::Int64}, {"octet_string", SimpleElementTypes::String},
                 {"uint", SimpleElementTypes::None},     {"unicode_string", SimpleElementTypes::None},
                 {"UINT8", SimpleElementTypes::None},    {"", SimpleElementTypes::None}};
    for (const auto& row : types) EXPECT_EQ(Metadata::GetSimpleType(row.text), row.type) << row.text;
    EXPECT_EQ(Metadata::GetAccessRights("write_only"), AccessRights::WriteOnly);
    EXPECT_EQ(Metadata::GetAccessRights(""), AccessRights::Unknown);
    EXPECT_EQ(Subsystem("BT", "", "", "", "", "", "").Type(), SUBSYSTEM_TYPE_BT);
    EXPECT_EQ(Subsystem("gnss", "", "", "", "", "", "").Type(), SUBSYSTEM_TYPE_GNSS);
    EXPECT_EQ(Subsystem("radio", "", "bt", "", "", "", "").Type(), SUBSYSTEM_TYPE_NONE)
        << "an alias has no effect";
    EXPECT_EQ(Subsystem::NameOf(SUBSYSTEM_TYPE_PSAUDIO), HostString("psaudio"));
}

using HostApi = KesTest::HostSession;

TEST_F(HostApi, ListsChipsSubsystemsAndKeys) {
    NetMetadataProvider provider(EXAMPLE_DATABASE);
    const auto chips = provider.GetChips();
    ASSERT_EQ(chips->size(), 4U);
    EXPECT_EQ((*chips)[0]->ChipId(), 76);
    EXPECT_EQ(provider.GetMetadataDetails(std::make_shared<Subsystem>("bt", "", "", "", "", "", ""),
                                          provider.GetMetadataByName(LABEL, SUBSYSTEM_TYPE_BT, "bd_addr")),
              nullptr)
        << "no listing has said which chip";
    const auto subsystems = provider.GetSubsystems(LABEL);
    ASSERT_EQ(subsystems->size(), 9U);
    EXPECT_TRUE(provider.GetSubsystems("nowhere")->empty());
    std::size_t walked = 0;
    for (const auto& key : provider.GetMetadatas("nowhere", "", SUBSYSTEM_TYPE_BT))
        walked += key.second ? 1U : 0U;
    EXPECT_EQ(walked, 0U);

    std::size_t structs = 0;
    for (const auto& subsystem : subsystems) {
        const auto keys = provider.GetMetadatas(LABEL, "", subsystem->Type());
        ASSERT_NE(keys, nullptr);
        for (const auto& [uid, key] : keys) {
            EXPECT_EQ(uid, key->Uid());
            EXPECT_NE(key->Psid(), 0) << "fields of structs are no keys";
            EXPECT_EQ(key->NumIndexes(), key->TableIndexes() ? key->TableIndexes()->size() : 0);
            const auto details = provider.GetMetadataDetails(subsystem, key);
            ASSERT_NE(details, nullptr);
            EXPECT_EQ(details, provider.GetMetadataDetails(nullptr, key)) << "kept in the record";
            EXPECT_EQ(details->Enums() != nullptr, key->MetadataType() == MetadataTypes::Enum);
            EXPECT_EQ(details->StructFields() != nullptr, key->MetadataType() == MetadataTypes::Struct);
            if (!details->StructFields()) continue;
            ++structs;
            for (const auto& field : details->StructFields())
                EXPECT_NE(field->MetaData()->Details(), nullptr);
        }
    }
    EXPECT_GT(structs, 10U);
    const auto key = provider.GetMetadataByPsid(LABEL, SUBSYSTEM_TYPE_BT, 0x1001);
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(provider.GetMetadataByName(LABEL, SUBSYSTEM_TYPE_BT, key->Name())->Uid(), key->Uid());
    EXPECT_EQ(provider.GetMetadataByPsid(LABEL, SUBSYSTEM_TYPE_BT, 0), nullptr);
    EXPECT_EQ(provider.GetMetadataByName(LABEL, SUBSYSTEM_TYPE_BT, "nobody"), nullptr);
    EXPECT_EQ(LastError(), "none");
    provider.Dispose();
    EXPECT_EQ(provider.GetChips(), nullptr);
    EXPECT_EQ(LastError(), "1 SQLite Metadata provider plugin not found");
}

TEST_F(HostApi, AStoredErrorMakesKeyQueriesGiveNull) {
    NetMetadataProvider wrong(mFolder / "nowhere.db");
    EXPECT_EQ(LastError(), "0 " + (mFolder / "nowhere.db") + ": cannot be opened: No such file or directory");
    NetMetadataProvider provider(EXAMPLE_DATABASE);
    EXPECT_EQ(provider.GetMetadatas(LABEL, "", SUBSYSTEM_TYPE_BT), nullptr);
    EXPECT_EQ(provider.GetMetadataByName(LABEL, SUBSYSTEM_TYPE_BT, "bd_addr"), nullptr);
    EXPECT_EQ(provider.GetChips()->size(), 4U) << "listings of chips ask for no error";
    ClearErrors();
    EXPECT_NE(provider.GetMetadatas(LABEL, "", SUBSYSTEM_TYPE_BT), nullptr);
}

TEST_F(HostApi, LoadsATextAndReportsItsErrors) {
    FrameworkFacade facade(EXAMPLE_DATABASE);
    EXPECT_EQ(facade.OwningChip(), nullptr);
    EXPECT_FALSE(facade.LoadText(mFolder / "any", false));
    EXPECT_EQ(LastError(), "0 no chip is set");
    facade.OwningChip(ChipOf(LABEL));
    EXPECT_TRUE(facade.LoadText(KesTest::EXAMPLE_FOLDER + "/headunit-production.ktf", false)) << LastError();
    EXPECT_EQ(LastError(), "none");
    EXPECT_TRUE(facade.IsMixedSubsystemTypes());
    EXPECT_EQ(facade.GetPlaces()->size(), 12U);
    std::string devices;
    for (const auto& store : facade.GetStores()) devices += std::to_string(store->DeviceId()) + " ";
    EXPECT_EQ(devices, "1 4 2 15 15 15 ") << "otp, mtp, smem, eeprom";
    EXPECT_EQ(facade.GetStores()->front()->StoreSize(), 0xFFFFFFFFU);

    const std::string two = mFolder.Write("two.ktf", "file=bt1\nnobody = 1\nnobody2 = 1\n");
    EXPECT_FALSE(facade.LoadText(two, true));
    EXPECT_EQ(LastError(),
              "0 \r\rline 2, column 10: Unknown name: nobody\rline 3, column 11: Unknown name: nobody2\r\r2 "
              "errors found")
        << "lines are separated by carriage returns once the library has started";
    EXPECT_EQ(facade.GetPlaces()->size(), 12U) << "a merge leaves the rest in place";

    EXPECT_FALSE(facade.LoadText(mFolder / "missing", true));
    EXPECT_EQ(LastError(), "0 The text file is zero length. No config data found.");
    EXPECT_EQ(facade.GetPlaces()->size(), 12U);
    EXPECT_FALSE(facade.LoadText(mFolder.Path(), false)) << "a folder is no text";
    EXPECT_EQ(LastError(), "0 The text file is zero length. No config data found.");
    EXPECT_TRUE(facade.GetPlaces()->empty()) << "without a merge the old configuration is gone";
    EXPECT_FALSE(facade.LoadText(mFolder.Write("empty", ""), false));

    EXPECT_TRUE(facade.LoadBlank());
    EXPECT_EQ(LastError(), "none");
    EXPECT_FALSE(facade.IsMixedSubsystemTypes());
}

TEST_F(HostApi, SavesATextOrReportsWhyNot) {
    FrameworkFacade facade(EXAMPLE_DATABASE);
    EXPECT_EQ(LastError(), "none") << "all readers and writers are there";
    const std::string path = mFolder / "saved.ktf";
    EXPECT_FALSE(facade.SaveText(path));
    EXPECT_EQ(LastError(), "0 no chip is set");
    facade.OwningChip(ChipOf(LABEL));
    EXPECT_FALSE(
        facade.LoadText(mFolder.Write("a.ktf", "file=bluetooth2\nbd_addr=00-02-5b-01-AB-CD\nx=1"), false));
    EXPECT_TRUE(facade.SaveText(path));
    EXPECT_EQ(LastError(), "none") << "a save clears what was stored before";
    EXPECT_EQ(KesTest::ReadFile(path), std::string("version=") + LABEL +
                                           "\n\n##############################\nfile=bluetooth2\n"
                                           "\n# Device address\nbd_addr = [ 00 02 5B 01 AB CD ]\n");
    EXPECT_TRUE(facade.LoadText(path, false));
    EXPECT_EQ(facade.GetPlaces()->front()->KeyCount(), 1U) << "a save leaves the configuration as it is";

    EXPECT_FALSE(facade.SaveText(mFolder / "missing/a.ktf"));
    EXPECT_EQ(LastError(), "0 unable to open the file: " + (mFolder / "missing/a.ktf"));
    EXPECT_FALSE(facade.SaveText(HostString()));
    EXPECT_EQ(LastError(), "0 no file name is given");
    facade.Dispose();
    EXPECT_FALSE(facade.SaveText(path));
    EXPECT_EQ(LastError(), "1 sqlite metadata plugin not found.");
}

TEST_F(HostApi, SettingTheChipDropsTheConfiguration) {
    FrameworkFacade facade(EXAMPLE_DATABASE);
    const std::shared_ptr<Chip> chip = ChipOf(LABEL);
    const std::string text =
        mFolder.Write("a.ktf", "version=x\nsubsystem=bluetooth\ndevice=otp\nstore=2\n0x1001 = %1%\n");
    for (int round = 0; round < 2; ++round) {
        facade.OwningChip(chip);
        EXPECT_TRUE(facade.GetPlaces()->empty());
        EXPECT_TRUE(facade.LoadText(text, false)) << LastError();
        EXPECT_TRUE(facade.LoadText(text, true));
        EXPECT_EQ(facade.GetPlaces()->front()->KeyCount(), 1U)
            << "a repeated key replaces the one that is there";
    }
    facade.Dispose();
    facade.Dispose();
    EXPECT_FALSE(facade.LoadText(text, false));
    EXPECT_EQ(facade.GetPlaces(), nullptr);
    EXPECT_TRUE(facade.LoadBlank());
}

TEST(HostApiWithoutDatabase, TextsWithoutUsableMetadataFailAtTheirFirstPlace) {
    Framework::Init(KES_TEST_PLUGIN_DIR);
    const TempFolder folder;
    FrameworkFacade facade(folder / "nowhere.db");
    facade.OwningChip(std::make_shared<Chip>());
    EXPECT_FALSE(facade.LoadText(folder.Write("a.ktf", "file=bt\n1 = %1%\n"), false));
    EXPECT_EQ(LastError(),
              "0 \rline 1, column 8: Unknown subsystem bt is not a valid subsystem. Valid subsystems are: "
              "\r\r1 error found");
}

}  // namespace
