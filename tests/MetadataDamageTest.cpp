// The plug-in "sqlite" with damaged, foreign and malicious files.

#include "model/IChipInfo.h"
#include "model/IMetadata.h"
#include "model/ISubsystemInfo.h"
#include "support/SmallDatabase.h"

#include <memory>
#include <string>
#include <sys/stat.h>

using namespace VemoKesConfigTools;
using namespace KesTest;

namespace {

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
        {"future.db", changed(63, 1),
         "its tables have version 1, this library reads version 2; rebuild it from its source"},
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
}

TEST_F(MetadataProvider, ChangedContentIsDetectedAndNotReturned) {
    const std::string path = Small();
    ChangeDatabase(path, "UPDATE key SET max = max + 1 WHERE name = 'link'");
    const auto provider = Open(path);
    EXPECT_EQ(LastError(), "");
    CKesContext bt = At("s1", SUBSYSTEM_BT);
    EXPECT_FALSE(provider->MetadataByName("mode", bt, false).IsValid());
    EXPECT_EQ(LastError(), "0 " + path + ": subsystem bt of s1 is damaged");
    const std::uint64_t errors = CTheMsgHnd::ErrorsEver();
    provider->MetadataByName("mode", bt, false);
    EXPECT_EQ(CTheMsgHnd::ErrorsEver(), errors) << "the same error is not stored over and over";
}

TEST_F(MetadataProvider, TypesThatContainThemselvesAreRejected) {
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
    WriteDatabase(mFolder / "loop.db", {system});
    const auto provider = Open(mFolder / "loop.db");
    CKesContext context = At("s1", SUBSYSTEM_BT);
    EXPECT_TRUE(provider->MetadataList(context, true).empty());
    EXPECT_EQ(LastError(),
              "0 " + (mFolder / "loop.db") + ": subsystem bt of s1: struct Loop: it contains itself");
}

TEST_F(MetadataProvider, StructsThatWouldUseAllMemoryAreRejected) {
    metadb::SystemData system;
    system.label = "s1";
    metadb::SubsystemData& bt = system.subsystems.emplace_back();
    bt.name = "bt";
    std::int32_t uid = 0;
    const auto field = [&](const std::string& name, const std::string& type) {
        metadb::FieldData made;
        made.uid = ++uid;
        made.name = name;
        made.type = type;
        return made;
    };
    bt.structs.push_back({"S0", {field("a", "uint8"), field("b", "uint8")}});
    for (int i = 1; i < 25; ++i) {
        const std::string inner = "S" + std::to_string(i - 1);
        bt.structs.push_back({"S" + std::to_string(i), {field("a", inner), field("b", inner)}});
    }
    metadb::KeyData& key = bt.keys.emplace_back();
    key.uid = ++uid;
    key.name = "huge";
    key.psid = 1;
    key.type = "S15";
    CKesContext context = At("s1", SUBSYSTEM_BT);
    WriteDatabase(mFolder / "most.db", {system});
    EXPECT_TRUE(Open(mFolder / "most.db")->MetadataByPsid(1, context, true).IsValid()) << LastError();
    key.type = "S24";
    WriteDatabase(mFolder / "huge.db", {system});
    EXPECT_FALSE(Open(mFolder / "huge.db")->MetadataByPsid(1, context, true).IsValid());
    EXPECT_EQ(LastError(),
              "0 " + (mFolder / "huge.db") +
                  ": subsystem bt of s1: key huge: its struct S24 contains more than 65536 values");
}

/// Everything that a provider returns from the small database.
std::string Shown(IMetadataProvider& provider) {
    CKesContext none;
    std::string text;
    for (const IChipInfo* chip : provider.ChipInfos(none)) {
        text += chip->SystemVersionLabel() + chip->Name() + chip->ChipId() + ";";
        CKesContext bt;
        bt.SetChip(chip->SystemVersionLabel());
        bt.SetSubsystemType(SUBSYSTEM_BT);
        for (const ISubsystemInfo* subsystem : provider.SubsystemInfos(bt)) {
            text += subsystem->Name() + subsystem->Alias() + ";";
        }
        for (const auto& [uid, record] : provider.MetadataList(bt, true)) {
            text += std::to_string(uid) + record->Name() + record->TypeName() + record->Label() +
                    std::to_string(record->Psid()) + std::to_string(record->Max()) + ";";
        }
    }
    return text;
}

/// If any byte of the file is damaged: no crash, and no result that differs from the correct one.
TEST_F(MetadataProvider, AnyDamagedByteGivesTheSameAnswersOrAnError) {
    const std::string good = ReadFile(Small());
    const std::string expected = Shown(*Open(mFolder / "small.db"));
    ASSERT_NE(expected, "");
    std::size_t refused = 0;
    for (std::size_t offset = 0; offset < good.size(); ++offset) {
        if (good[offset] == 0 || offset % 5 != 0) continue;  // zeros are mostly unused space
        std::string bytes = good;
        bytes[offset] = static_cast<char>(bytes[offset] ^ 0x5A);
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        const auto provider = Open(mFolder.Write("bad.db", bytes));
        const std::string answers = Shown(*provider);
        if (LastError().empty()) {
            EXPECT_EQ(answers, expected) << "offset " << offset;
        } else {
            ++refused;
        }
    }
    EXPECT_GT(refused, 100U);
}

TEST_F(MetadataProvider, AnyChangedRowIsDetected) {
    const struct {
        const char* sql;
        const char* error;
    } rows[] = {
        {"UPDATE system SET chip_id = 76", ": its list of systems is damaged"},
        {"UPDATE system SET rom_version = '1'", ": its list of systems is damaged"},
        {"UPDATE subsystem SET alias = 'blve'", ": its list of systems is damaged"},
        {"UPDATE subsystem SET digest = digest + 1", ": its list of systems is damaged"},
        {"DELETE FROM subsystem", ": its list of systems is damaged"},
        {"UPDATE head SET digest = digest + 1", ": its list of systems is damaged"},
        {"DELETE FROM head", ": its list of systems is damaged"},
        {"UPDATE enumerator SET value = 3 WHERE name = 'FAST'", ": subsystem bt of s1 is damaged"},
        {"UPDATE enumerator SET position = 5 WHERE name = 'FAST'", ": the rows of a list are damaged"},
        {"UPDATE field SET lsb = 6 WHERE name = 'leaf'", ": subsystem bt of s1 is damaged"},
        {"UPDATE field SET lsb = 4294967301 WHERE name = 'leaf'", ": a number is out of range"},
        {"DELETE FROM key WHERE name = 'link'", ": subsystem bt of s1 is damaged"},
        {"UPDATE key_index SET max = 4 WHERE name = 'row'", ": subsystem bt of s1 is damaged"},
        {"UPDATE key_index_value SET name = 'ou' WHERE name = 'out'", ": subsystem bt of s1 is damaged"},
        {"UPDATE default_value SET value = 'SLOW'", ": subsystem bt of s1 is damaged"},
    };
    for (const auto& row : rows) {
        const std::string path = Small();
        ChangeDatabase(path, row.sql);
        const auto provider = Open(path);
        static_cast<void>(Shown(*provider));
        EXPECT_EQ(LastError(), "0 " + path + row.error) << row.sql;
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        std::filesystem::remove(path);
    }
}

TEST_F(MetadataProvider, OtherTablesAreRejected) {
    const char* const rows[] = {
        "CREATE VIEW v AS SELECT 1",
        "CREATE TRIGGER t AFTER INSERT ON system BEGIN SELECT 1; END",
        "CREATE TABLE more (id INTEGER)",
        "CREATE INDEX more ON key (name)",
        "ALTER TABLE key ADD COLUMN more TEXT",
        "ANALYZE",
        "DROP INDEX field_of_struct",
        "ALTER TABLE system RENAME TO s2; CREATE VIEW system AS SELECT * FROM s2",
    };
    for (const char* sql : rows) {
        const std::string path = Small();
        ChangeDatabase(path, sql);
        Open(path);
        EXPECT_EQ(LastError(), "0 " + path + ": its tables are not those of a metadata database") << sql;
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        std::filesystem::remove(path);
    }
}

/// A journal or log next to the file would be rolled back or replayed, which would change the results.
TEST_F(MetadataProvider, FilesBesideTheDatabaseChangeNothing) {
    const std::string path = Small();
    const std::string good = Shown(*Open(path));
    // The log of a change that was committed, but never brought into the file.
    ASSERT_EQ(std::system(("cp '" + path + "' '" + mFolder / "log.db" + "'").c_str()), 0);
    ChangeDatabase(mFolder / "log.db", "PRAGMA journal_mode = WAL");
    const std::string walMode = ReadFile(mFolder / "log.db");
    sqlite3* writer = nullptr;
    ASSERT_EQ(sqlite3_open((mFolder / "log.db").c_str(), &writer), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(writer, "UPDATE key SET max = 8", nullptr, nullptr, nullptr), SQLITE_OK);
    const std::string log = ReadFile(mFolder / "log.db-wal");
    sqlite3_close(writer);
    ASSERT_GT(log.size(), 4096U);
    mFolder.Write("small.db-wal", log);
    EXPECT_EQ(Shown(*Open(path)), good);
    EXPECT_EQ(LastError(), "");
    mFolder.Write("walmode.db", walMode);
    mFolder.Write("walmode.db-wal", log);
    EXPECT_EQ(Shown(*Open(mFolder / "walmode.db")), good);
    EXPECT_EQ(LastError(), "");

    // The journal of a change that was cut, with the pages of another database.
    std::filesystem::remove(path + "-wal");
    const std::string other = Small("other.db");
    ChangeDatabase(other, "UPDATE key SET max = 8");
    ASSERT_EQ(sqlite3_open(other.c_str(), &writer), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(writer,
                           "PRAGMA synchronous = OFF; PRAGMA cache_size = 1; BEGIN; UPDATE key SET max = 9; "
                           "CREATE TABLE filler (x); INSERT INTO filler VALUES (zeroblob(100000))",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    const std::string journal = ReadFile(other + "-journal");
    sqlite3_exec(writer, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(writer);
    ASSERT_GT(journal.size(), 512U);
    mFolder.Write("small.db-journal", journal);
    EXPECT_EQ(Shown(*Open(path)), good);
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(ReadFile(path + "-journal"), journal) << "left alone";
}

TEST_F(MetadataProvider, NamesMayHoldWhatAddressesUse) {
    const std::string good = Shown(*Open(Small()));
    for (const char* name : {"a?mode=memory", "a#b.db", "a%41.db", "a b&c=d.db", "\xC3\xA9.db", ":memory:"}) {
        EXPECT_EQ(Shown(*Open(Small(name))), good) << name;
        EXPECT_EQ(LastError(), "") << name;
    }
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(mFolder.Path());
    for (const char* name : {":memory:", "small.db", "./a#b.db"}) {
        EXPECT_EQ(Shown(*Open(name)), good) << name;
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(Shown(*Open("/" + mFolder / "small.db")), good) << "two slashes in front";
}

TEST_F(MetadataProvider, WhatIsNoFileIsRefusedAtOnce) {
    const std::string pipe = mFolder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::pair<std::string, const char*> rows[] = {
        {pipe, ": is not a regular file"},
        {"/dev/zero", ": is not a regular file"},
        {mFolder.Path(), ": is a directory"},
        {mFolder / "none", ": cannot be opened: No such file or directory"},
    };
    for (const auto& [path, error] : rows) {
        Open(path);
        EXPECT_EQ(LastError(), "0 " + path + error);
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    }
}

}  // namespace
