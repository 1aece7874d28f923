#pragma once

#include "messages/CTheMsgHnd.h"
#include "model/CKesContext.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IMetadataProvider.h"
#include "support/Database.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace KesTest {

using namespace VemoKesConfigTools;

inline CMessageHandler& Handler() {
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false);
}

inline std::string LastError() {
    std::int16_t number = -1;
    std::string text;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    return Handler().LastError(number, text, group) ? std::to_string(number) + " " + text : std::string();
}

/// The plug-in "sqlite" with a small database.
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
    /// A database with one subsystem that has one struct key and one enum key.
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
        WriteDatabase(mFolder / name, {system});
        return mFolder / name;
    }
    TempFolder mFolder;
};

}  // namespace KesTest
