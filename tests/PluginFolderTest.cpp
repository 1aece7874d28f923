// How the factories handle plug-in folders, valid and hostile.

#include "messages/CTheMsgHnd.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"
#include "model/IStoreManager.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using namespace VemoKesConfigTools;
using KesTest::TempFolder;

namespace {

struct TraceLines final : CMessageHandlerObserver {
    TraceLines() {
        CTheMsgHnd::AddObserver(*this);
        CTheMsgHnd::ActivateDebug(true);
    }
    ~TraceLines() override {
        CTheMsgHnd::ActivateDebug(false);
        CTheMsgHnd::RemoveObserver(*this);
    }
    void OnTrace(const std::string& line) override { lines.push_back(line); }
    bool Tells(const std::string& file, const std::string& why) const {
        return std::ranges::any_of(lines, [&](const std::string& line) {
            return line.find(file + " left out: ") != std::string::npos &&
                   line.find(why) != std::string::npos;
        });
    }
    std::vector<std::string> lines;
};

void Copy(const TempFolder& folder, const std::string& module, const std::string& name) {
    std::filesystem::copy_file(std::string(KES_TEST_BINARY_DIR) + "/tests/" + module, folder / name);
}

TEST(PluginFolder, SkipsFilesThatAreNotPluginsAndReportsWhy) {
    const TempFolder folder;
    folder.Write("text.kpm", "not a module");
    folder.Write("empty.kpm", "");
    folder.Write("hostile.so", "another pattern");
    std::filesystem::create_directory(folder / "folder.kpm");
    for (const char* kind : {"no_entry", "null_descriptor", "other_abi", "no_name", "throws"}) {
        Copy(folder, std::string("hostile_") + kind + ".kpm", std::string(kind) + ".kpm");
    }
    const TraceLines trace;
    CReaderWriterFactory::Ref().Load(folder.Path());
    EXPECT_EQ(CReaderWriterFactory::Ref().CreateReader("hostile", "", nullptr), nullptr);
    EXPECT_TRUE(trace.Tells("text.kpm", "text.kpm"));
    EXPECT_TRUE(trace.Tells("empty.kpm", "file too short"));
    EXPECT_TRUE(trace.Tells("no_entry.kpm", "KesPluginDescribe"));
    EXPECT_TRUE(trace.Tells("null_descriptor.kpm", "it gives no descriptor"));
    EXPECT_TRUE(trace.Tells("other_abi.kpm", "it was built for ABI version 999, this library has 1"));
    EXPECT_TRUE(trace.Tells("no_name.kpm", "it has no name"));
    EXPECT_TRUE(trace.Tells("throws.kpm", "its entry function threw"));
    EXPECT_FALSE(trace.Tells("folder.kpm", "")) << "a folder is nothing that could have been one";
    EXPECT_FALSE(trace.Tells("hostile.so", ""));

    CReaderWriterFactory::Ref().Load(folder / "nowhere");
    EXPECT_TRUE(trace.Tells("nowhere", "No such file or directory"));
}

/// A truncated module can be mapped, but its first access raises a signal. Debug information, which may be
/// half of it, is not mapped.
TEST(PluginFolder, SkipsATruncatedModule) {
    const std::string whole = KesTest::ReadFile(std::string(KES_TEST_PLUGIN_DIR) + "/sqlite.kpm");
    const TempFolder folder;
    for (const std::size_t percent : {1U, 10U, 25U}) {
        folder.Write("cut" + std::to_string(percent) + ".kpm", whole.substr(0, whole.size() * percent / 100));
    }
    const TraceLines trace;
    CReaderWriterFactory::Ref().Load(folder.Path());
    for (const char* percent : {"1", "10", "25"}) {
        EXPECT_TRUE(trace.Tells(std::string("cut") + percent + ".kpm", "it is cut short")) << percent;
    }
}

TEST(PluginFolder, OfTwoWithOneNameTheFirstIsKept) {
    const TempFolder folder;
    Copy(folder, "hostile_creator_throws.kpm", "a.kpm");
    Copy(folder, "hostile_second_of_its_name.kpm", "b.kpm");
    CReaderWriterFactory& factory = CReaderWriterFactory::Ref();
    factory.Load(folder.Path());
    factory.Load(folder.Path());
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false);
    EXPECT_EQ(factory.CreateReader("fragile", "the device", nullptr), nullptr);
    std::int16_t number = 0;
    std::string text;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    ASSERT_TRUE(handler.LastError(number, text, group)) << "an exception does not leave the module";
    EXPECT_EQ(text, "cannot reach the device");
    EXPECT_EQ(number, 1);
    EXPECT_EQ(factory.CreateReader("fragile", "", nullptr), nullptr);
    handler.LastError(number, text, group);
    EXPECT_EQ(text, "unknown exception") << "nor does one that is no std::exception";
}

TEST(PluginFolder, GivesNullForWhatAPluginDoesNotHave) {
    CReaderWriterFactory& factory = CReaderWriterFactory::Ref();
    CMetadataProviderFactory& metadata = CMetadataProviderFactory::Ref();
    EXPECT_EQ(metadata.Create("sqlite", "x"), nullptr) << "nothing is loaded yet";
    factory.Load(KES_TEST_PLUGIN_DIR);
    metadata.Load(KES_TEST_PLUGIN_DIR);
    EXPECT_EQ(factory.CreateReader("sqlite", "x", nullptr), nullptr);
    EXPECT_EQ(factory.CreateStoreManager("KesText", "x", nullptr), nullptr);
    EXPECT_EQ(factory.CreateReader("nobody", "x", nullptr), nullptr);
    EXPECT_EQ(factory.CreateReader("KesText", "", nullptr), nullptr) << "neither a file nor a stream";
    EXPECT_EQ(factory.CreateWriter("KesText", "", nullptr), nullptr);
    EXPECT_EQ(metadata.Create("KesText", "x"), nullptr);
    const std::unique_ptr<IConfigReader> reader(factory.CreateReader("KesText", "file", nullptr));
    EXPECT_NE(reader, nullptr);
    std::unique_ptr<IMetadataProvider> provider(metadata.Create("sqlite", "nowhere"));
    metadata.Release();
    EXPECT_EQ(metadata.Create("sqlite", "x"), nullptr);
    provider.reset();
    metadata.Load(KES_TEST_PLUGIN_DIR);
    provider.reset(metadata.Create("sqlite", "nowhere"));
    EXPECT_NE(provider, nullptr);
}

}  // namespace
