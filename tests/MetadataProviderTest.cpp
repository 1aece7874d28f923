// The plug-in "sqlite" on real files: answers, and what damage does to them.

#include "messages/CTheMsgHnd.h"
#include "metadb/MetadataDatabase.h"
#include "metadb/Sqlite.h"
#include "model/CChipConfig.h"
#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/CStructField.h"
#include "model/CSubsystemConfig.h"
#include "model/CTableIndex.h"
#include "model/IChipInfo.h"
#include "model/IConfigReader.h"
#include "model/IMetadata.h"
#include "model/IMetadataDetail.h"
#include "model/IMetadataProvider.h"
#include "model/ISubsystemInfo.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

using namespace VemoKesConfigTools;
using KesTest::TempFolder;

namespace {

CMessageHandler& Handler() {
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false);
}

std::string LastError() {
    std::int16_t number = -1;
    std::string text;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    return Handler().LastError(number, text, group) ? std::to_string(number) + " " + text : std::string();
}

class MetadataProvider : public testing::Test {
protected:
    MetadataProvider() {
        CMetadataProviderFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
        CReaderWriterFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    }
    static std::unique_ptr<IMetadataProvider> Open(const std::string& path) {
        return std::unique_ptr<IMetadataProvider>(CMetadataProviderFactory::Ref().Create("sqlite", path));
    }
    static CKesContext At(const std::string& chip, std::int32_t type) {
        CKesContext context;
        context.SetChip(chip);
        context.SetSubsystemType(type);
        return context;
    }
    /// A database with one subsystem of one struct key and one enum key.
    std::string Small(const std::string& name = "small.db") const {
        metadb::KeyData enumKey;
        enumKey.uid = 1;
        enumKey.name = "mode";
        enumKey.type = "Mode";
        enumKey.psid = 0x1234;
        enumKey.defaults = {{"", "FAST", {}}};
        enumKey.indexes = {{"row", 1, 3, false, {}}, {"way", 0, 1, true, {{"in", 0}, {"out", 1}}}};
        metadb::KeyData structKey;
        structKey.uid = 2;
        structKey.name = "link";
        structKey.type = "Outer";
        structKey.psid = 7;
        metadb::FieldData inner;
        inner.uid = 3;
        inner.name = "in";
        inner.type = "Inner";
        metadb::FieldData leaf;
        leaf.uid = 4;
        leaf.name = "leaf";
        leaf.type = "uint8";
        leaf.max = 9;
        leaf.lsb = 5;
        leaf.width = 8;
        metadb::SubsystemData bt;
        bt.name = "bt";
        bt.alias = "blue";
        bt.enums = {{"Mode", {{"SLOW", 2}, {"FAST", 1}}}};
        bt.structs = {{"Outer", {inner}}, {"Inner", {leaf}}};
        bt.keys = {enumKey, structKey};
        metadb::SystemData system;
        system.label = "s1";
        system.chipName = "C";
        system.chipId = 75;
        system.subsystems = {bt};
        metadb::WriteDatabase(mFolder / name, {system});
        return mFolder / name;
    }
    TempFolder mFolder;
};

TEST_F(MetadataProvider, AnswersByNumberByNameAndByUid) {
    const auto provider = Open(Small());
    CKesContext bt = At("s1", SUBSYSTEM_BT);
    EXPECT_EQ(provider->MetadataByPsid(0x1234, bt, false).Name(), "mode");
    const IMetadata& mode = provider->MetadataByName("mode", bt, true);
    EXPECT_EQ(mode.MetadataType(), METADATA_TYPE_ENUM);
    EXPECT_EQ(mode.Detail()->Enums()->begin()->first, "FAST") << "in ascending order of names";
    EXPECT_EQ(mode.NumIndexes(), 2U);
    EXPECT_EQ(mode.TableIndexAt(1)->Name(), "row");
    EXPECT_EQ(mode.TableIndexAt(2)->Enums().at("out"), 1);
    EXPECT_EQ(mode.TableIndexAt(0), nullptr);
    EXPECT_EQ(mode.TableIndexAt(3), nullptr);

    const IMetadata& link = provider->MetadataByUid(2, bt, true);
    EXPECT_EQ(link.MetadataType(), METADATA_TYPE_STRUCT);
    EXPECT_EQ(link.Detail()->Enums(), nullptr);
    const IMetadata& inner = *link.Detail()->Fields().at(0)->Metadata();
    EXPECT_EQ(&inner, &provider->MetadataByUid(3, bt, true));
    EXPECT_EQ(inner.MetadataType(), METADATA_TYPE_STRUCT)
        << "a struct that is told after the one that holds it";
    const CStructField& leaf = *inner.Detail()->Fields().at(0);
    EXPECT_EQ(leaf.ElemLsbBitPos(), 5);
    EXPECT_EQ(leaf.Metadata()->Max(), 9);

    EXPECT_EQ(provider->MetadataList(bt, true).size(), 4U);
    EXPECT_FALSE(provider->MetadataByName("leaf", bt, false).IsValid()) << "a field is no key";
    EXPECT_FALSE(provider->MetadataByPsid(0, bt, false).IsValid());
    EXPECT_FALSE(provider->MetadataByUid(99, bt, false).IsValid());
    CKesContext elsewhere = At("s1", SUBSYSTEM_WLAN);
    EXPECT_FALSE(provider->MetadataByName("mode", elsewhere, false).IsValid());
    CKesContext unknown = At("s2", SUBSYSTEM_BT);
    EXPECT_FALSE(provider->MetadataByName("mode", unknown, false).IsValid());
    EXPECT_TRUE(provider->MetadataByName("mode", bt, false).IsValid());
    EXPECT_TRUE(provider->SubsystemInfos(unknown).empty());
    EXPECT_EQ(provider->SubsystemInfos(bt).at(0)->Alias(), "blue");
    EXPECT_EQ(provider->ChipInfos(bt).at(0)->ChipId(), "75");
    EXPECT_EQ(LastError(), "");
}

TEST_F(MetadataProvider, OfKeysThatShareANumberTheFirstIsMeant) {
    metadb::SystemData system;
    system.label = "s1";
    metadb::SubsystemData& bt = system.subsystems.emplace_back();
    bt.name = "bt";
    std::int32_t uid = 0;
    for (const auto& [name, psid] : {std::pair("a", 1U), {"first", 5U}, {"second", 5U}, {"z", 6U}}) {
        metadb::KeyData& key = bt.keys.emplace_back();
        key.uid = ++uid;
        key.name = name;
        key.type = "uint8";
        key.psid = psid;
    }
    metadb::WriteDatabase(mFolder / "twins.db", {system});
    const auto provider = Open(mFolder / "twins.db");
    CKesContext context = At("s1", SUBSYSTEM_BT);
    // What was asked before must make no difference.
    for (const char* before : {"a", "first", "second", "z"}) {
        EXPECT_EQ(provider->MetadataByName(before, context, false).Name(), before);
        EXPECT_EQ(provider->MetadataByPsid(5, context, false).Name(), "first") << "behind " << before;
    }
}

TEST_F(MetadataProvider, KeysOfASubsystemNeedNotStandSideBySide) {
    const std::string path = Small();
    {
        metadb::Sqlite database(path, metadb::Sqlite::Mode::Create);
        // A key of another subsystem comes between the two.
        database.Execute(
            "UPDATE key SET id = 9 WHERE name = 'link';"
            "INSERT INTO subsystem SELECT 2, system_id, 'wlan', '', '', '', '', '', '', 0 FROM subsystem;"
            "INSERT INTO key SELECT 5, 2, uid + 10, 'other', type, label, description, description_internal, "
            "format, min, max, units, access, internal, is_array, array_min, array_max, oid, source, 8 "
            "FROM key WHERE name = 'mode';"
            "INSERT INTO default_value VALUES (5, 0, '', 'SLOW');"
            "INSERT INTO key_index VALUES (5, 0, 'row', 0, 0, 0);");
    }
    const auto provider = Open(path);
    CKesContext bt = At("s1", SUBSYSTEM_BT);
    EXPECT_EQ(provider->MetadataByName("mode", bt, true).NumIndexes(), 2U);
    EXPECT_EQ(provider->MetadataByPsid(7, bt, true).Name(), "link");
    EXPECT_EQ(provider->MetadataList(bt, true).size(), 4U);
    EXPECT_FALSE(provider->MetadataByName("other", bt, true).IsValid());
    EXPECT_EQ(LastError(), "");
}

TEST_F(MetadataProvider, RecordsOutliveARefresh) {
    const auto provider = Open(Small());
    CKesContext bt = At("s1", SUBSYSTEM_BT);
    const IMetadata& before = provider->MetadataByName("mode", bt, false);
    std::filesystem::remove(mFolder / "small.db");
    EXPECT_TRUE(provider->MetadataByName("link", bt, false).IsValid()) << "loaded once";
    provider->Refresh();
    EXPECT_FALSE(provider->MetadataByName("mode", bt, false).IsValid());
    EXPECT_EQ(LastError(), "0 " + (mFolder / "small.db") + ": unable to open database file");
    EXPECT_EQ(before.Name(), "mode");
    Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    Small();
    provider->Refresh();
    EXPECT_TRUE(provider->MetadataByName("mode", bt, false).IsValid());
    EXPECT_EQ(LastError(), "");
}

TEST_F(MetadataProvider, ReadsDefaultValuesIntoLayerZero) {
    const auto provider = Open(KesTest::EXAMPLE_DATABASE);
    auto* reader = dynamic_cast<IConfigReader*>(provider.get());
    ASSERT_NE(reader, nullptr);
    CChipConfig chip;
    reader->SetObserver(&chip);
    CKesContext context = At("ostrell_520_2_3", SUBSYSTEM_BT);
    context.SetLayerNumber(0);
    EXPECT_TRUE(reader->Read(context)) << LastError();
    EXPECT_GT(chip.Subsystems().begin()->second->Elements().size(), 20U);
    EXPECT_FALSE(chip.HasElements(0x1001, SUBSYSTEM_BT, 1));
    EXPECT_TRUE(chip.HasElements(0x1001, SUBSYSTEM_BT, 0)) << "a key of the example that has a default";
    CKesContext gnss = At("ostrell_520_2_3", SUBSYSTEM_GNSS);
    EXPECT_TRUE(reader->Read(gnss)) << "no defaults are no failure";
}

TEST_F(MetadataProvider, WrongFilesGiveAnErrorThatNamesThem) {
    const std::string good = KesTest::ReadFile(Small());
    const auto changed = [&](std::size_t offset, char byte) {
        std::string bytes = good;
        bytes[offset] = byte;
        return bytes;
    };
    const struct {
        const char* name;
        std::string content;
        const char* cause;
    } rows[] = {
        {"text.db", "hello, this is no database at all, but it is long enough to be looked at",
         "file is not a database"},
        {"empty.db", "", "not a metadata database"},
        {"foreign.db", changed(68, 'X'), "not a metadata database"},
        {"future.db", changed(63, 2),
         "its tables have version 2, this library reads version 1; build it anew from its source"},
        {"cut.db", good.substr(0, good.size() / 2), "database disk image is malformed"},
    };
    for (const auto& row : rows) {
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        const auto provider = Open(mFolder.Write(row.name, row.content));
        CKesContext bt = At("s1", SUBSYSTEM_BT);
        EXPECT_FALSE(provider->MetadataByName("mode", bt, true).IsValid()) << row.name;
        EXPECT_EQ(LastError(), "0 " + (mFolder / row.name) + ": " + row.cause);
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        provider->MetadataList(bt, true);
        EXPECT_NE(LastError(), "") << "each question tells it again";
    }
    Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    Open(mFolder.Path());
    EXPECT_EQ(LastError(), "0 " + mFolder.Path() + ": is a directory");
}

TEST_F(MetadataProvider, ChangedContentIsNoticedAndNotHandedOut) {
    const std::string path = Small();
    metadb::Sqlite(path, metadb::Sqlite::Mode::Create)
        .Execute("UPDATE key SET max = max + 1 WHERE name = 'link'");
    const auto provider = Open(path);
    EXPECT_EQ(LastError(), "");
    CKesContext bt = At("s1", SUBSYSTEM_BT);
    EXPECT_FALSE(provider->MetadataByName("mode", bt, false).IsValid());
    EXPECT_EQ(LastError(), "0 " + path + ": subsystem bt of s1 is damaged");
    const std::uint64_t errors = CTheMsgHnd::ErrorsEver();
    provider->MetadataByName("mode", bt, false);
    EXPECT_EQ(CTheMsgHnd::ErrorsEver(), errors) << "the same error is not stored over and over";
}

TEST_F(MetadataProvider, TypesThatHoldThemselvesAreRefused) {
    metadb::FieldData field;
    field.uid = 1;
    field.name = "f";
    field.type = "Loop";
    metadb::SubsystemData bt;
    bt.name = "bt";
    bt.structs = {{"Loop", {field}}};
    metadb::SystemData system;
    system.label = "s1";
    system.subsystems = {bt};
    metadb::WriteDatabase(mFolder / "loop.db", {system});
    const auto provider = Open(mFolder / "loop.db");
    CKesContext context = At("s1", SUBSYSTEM_BT);
    EXPECT_TRUE(provider->MetadataList(context, true).empty());
    EXPECT_EQ(LastError(),
              "0 " + (mFolder / "loop.db") + ": subsystem bt of s1: struct Loop: it holds itself");
}

/// Whatever byte of the file is damaged: no crash, and no record that differs from the good one.
TEST_F(MetadataProvider, AnyDamagedByteGivesTheSameRecordsOrNone) {
    const std::string good = KesTest::ReadFile(Small());
    const auto shown = [](IMetadataProvider& provider) {
        CKesContext bt = At("s1", SUBSYSTEM_BT);
        std::string text;
        for (const auto& [uid, record] : provider.MetadataList(bt, true)) {
            text += std::to_string(uid) + record->Name() + record->TypeName() + record->Label() +
                    std::to_string(record->Psid()) + std::to_string(record->Max()) + ";";
        }
        return text;
    };
    const std::string expected = shown(*Open(mFolder / "small.db"));
    ASSERT_NE(expected, "");
    std::size_t refused = 0;
    for (std::size_t offset = 0; offset < good.size(); ++offset) {
        if (good[offset] == 0 || offset % 3 != 0)
            continue;  // zeros are room that no record uses, for the most part
        std::string bytes = good;
        bytes[offset] = static_cast<char>(bytes[offset] ^ 0x5A);
        const auto provider = Open(mFolder.Write("bad.db", bytes));
        const std::string records = shown(*provider);
        if (records.empty()) {
            ++refused;
        } else {
            EXPECT_EQ(records, expected) << "offset " << offset;
        }
    }
    EXPECT_GT(refused, 100U);
}

}  // namespace
