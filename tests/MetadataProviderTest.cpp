// The plug-in "sqlite" on real files: its answers.

#include "model/CChipConfig.h"
#include "model/CElement.h"
#include "model/CStructField.h"
#include "model/CSubsystemConfig.h"
#include "model/CTableIndex.h"
#include "model/IChipInfo.h"
#include "model/IConfigReader.h"
#include "model/IMetadata.h"
#include "model/IMetadataDetail.h"
#include "model/ISubsystemInfo.h"
#include "support/SmallDatabase.h"

#include <memory>
#include <string>
#include <utility>

using namespace VemoKesConfigTools;
using namespace KesTest;

namespace {

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

TEST_F(MetadataProvider, OfKeysThatShareANumberTheFirstIsFound) {
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
    WriteDatabase(mFolder / "twins.db", {system});
    const auto provider = Open(mFolder / "twins.db");
    CKesContext context = At("s1", SUBSYSTEM_BT);
    // Earlier queries must make no difference.
    for (const char* before : {"a", "first", "second", "z"}) {
        EXPECT_EQ(provider->MetadataByName(before, context, false).Name(), before);
        EXPECT_EQ(provider->MetadataByPsid(5, context, false).Name(), "first") << "behind " << before;
    }
}

TEST_F(MetadataProvider, KeysOfASubsystemNeedNotBeContiguous) {
    const std::string path = Small();
    // A key of another subsystem is between the two.
    ChangeDatabase(
        path,
        "UPDATE key SET id = 9 WHERE name = 'link';"
        "INSERT INTO subsystem SELECT 2, system_id, 'wlan', '', '', '', '', '', '', 0 FROM subsystem;"
        "INSERT INTO key SELECT 5, 2, uid + 10, 'other', type, label, description, description_internal, "
        "format, min, max, units, access, internal, is_array, array_min, array_max, oid, source, 8 "
        "FROM key WHERE name = 'mode';"
        "INSERT INTO default_value VALUES (5, 0, '', 'SLOW');"
        "INSERT INTO key_index VALUES (5, 0, 'row', 0, 0, 0);");
    RenewHeadDigest(path);
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
    EXPECT_EQ(LastError(), "0 " + (mFolder / "small.db") + ": cannot be opened: No such file or directory");
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

}  // namespace
