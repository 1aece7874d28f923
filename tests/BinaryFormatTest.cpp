// The bytes of binary files: the library, the document of the format and a decoder that was made from the
// document alone agree on them, and they stay what they are.

#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IConfigReader.h"
#include "model/IMetadataProvider.h"
#include "support/Dump.h"
#include "support/HostSession.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

using namespace KesTest;

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

const std::string GOLDEN = std::string(KES_TEST_SOURCE_DIR) + "/tests/data/golden";

Outcome RunDecoder(const std::vector<std::string>& files) {
    const TempFolder folder;
    std::string line = "'" KES_TEST_SOURCE_DIR "/scripts/decode_binary'";
    for (const std::string& file : files) line += " '" + file + "'";
    return RunShell(folder, line);
}

/// The documents that `scripts/decode_binary` prints, one for each file.
std::vector<Json> Decoded(const std::vector<std::string>& files) {
    const Outcome outcome = RunDecoder(files);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    std::istringstream stream(outcome.out);
    std::vector<Json> documents(files.size());
    for (Json& document : documents) stream >> document;
    return documents;
}

std::string BytesOf(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

/// A value of the decoder as `DumpPayload` has those of the model.
std::string ShowValue(const Json& value) {
    static const std::map<std::string, std::string> TYPES = {
        {"int8", "i8"},    {"int16", "i16"},     {"int32", "i32"},  {"int64", "i64"},
        {"uint8", "u8"},   {"uint16", "u16"},    {"uint32", "u32"}, {"uint64", "u64"},
        {"string", "str"}, {"struct", "struct"}, {"enum", "enum"},
    };
    std::string text = TYPES.at(value["type"]);
    if (value.contains("items")) {
        text += "{";
        for (const Json& item : value["items"]) text += (text.back() == '{' ? "" : ",") + ShowValue(item);
        return text + "}";
    }
    if (value.contains("bytes")) return DumpBytes(BytesOf(value["bytes"]));
    if (value.contains("name")) return value["name"].get<std::string>() + "(" + value["value"].dump() + ")";
    return text + ":" + value["value"].dump();
}

using Keys = std::vector<std::string>;
/// The keys of each place, which is shown as `SUBSYSTEM/DEVICE/STORE#ORDER`.
using Places = std::map<std::string, Keys>;

void AddDecoded(const Json& place, Places& places) {
    const Json order = place["store_position"].is_null() ? Json(0) : place["store_position"];
    Keys& keys = places[place["subsystem"].dump() + "/" + place["device"].dump() + "/" +
                        place["store"].dump() + "#" + order.dump()];
    for (const Json& key : place["keys"]) {
        std::string text = key["psid"].dump();
        for (const Json& index : key["indexes"]) text += "." + index.dump();
        text += "=";
        for (const Json& value : key["values"]) text += " " + ShowValue(value);
        keys.push_back(text);
    }
}

Places ShowModel(const CChipConfig& config) {
    Places places;
    for (const auto& [number, place] : config.Subsystems()) {
        const CKesContext& at = place->Place();
        Keys& keys = places[std::to_string(at.SubsystemType()) + "/" + std::to_string(at.Device()) + "/" +
                            std::to_string(at.Store()) + "#" + std::to_string(std::max(at.Order(), 0))];
        for (const CElement* element : place->Elements()) {
            std::string text = element->KeyString() + "=";
            for (const IPayload* payload : element->Payloads()) text += " " + DumpPayload(*payload);
            keys.push_back(text);
        }
    }
    return places;
}

class BinaryFormat : public HostSession {
protected:
    /// The chunk files of a text, through the front door.
    std::vector<std::string> ChunksOf(const std::string& text) {
        host::FrameworkFacade facade(EXAMPLE_DATABASE);
        facade.OwningChip(ChipOf(SystemOf(text)));
        EXPECT_TRUE(facade.LoadText(text, false)) << LastError();
        const std::string folder = mFolder / fs::path(text).stem().string();
        EXPECT_TRUE(facade.SaveBinary(folder)) << LastError();
        std::vector<std::string> files;
        for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
        return files;
    }
    static std::string SystemOf(const std::string& text) {
        const std::string content = KesTest::ReadFile(text);
        std::smatch match;
        std::regex_search(content, match, std::regex("version=(\\w+)"));
        return match.str(1);
    }
    /// The model that the text reader makes of a text.
    static Places ModelOf(const std::string& text) {
        std::ifstream stream(text);
        const std::unique_ptr<IMetadataProvider> provider(
            CMetadataProviderFactory::Ref().Create("sqlite", EXAMPLE_DATABASE));
        const std::unique_ptr<IConfigReader> reader(
            CReaderWriterFactory::Ref().CreateReader("KesText", {}, &stream));
        CChipConfig config;
        reader->SetMetadataProvider(provider.get());
        reader->SetObserver(&config);
        CKesContext context;
        context.SetChip(SystemOf(text));
        context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
        EXPECT_TRUE(reader->Read(context)) << LastError();
        return ShowModel(config);
    }
};

TEST_F(BinaryFormat, IsReadAlikeByAnotherDecoder) {
    std::size_t texts = 0;
    for (const auto& entry : fs::directory_iterator(EXAMPLE_FOLDER)) {
        const std::string text = entry.path();
        if (entry.path().extension() != ".ktf" || text.ends_with("with-mistakes.ktf")) continue;
        ++texts;
        Places decoded;
        for (const Json& document : Decoded(ChunksOf(text))) {
            EXPECT_EQ(document["system"], SystemOf(text));
            for (const Json& place : document["places"]) AddDecoded(place, decoded);
        }
        EXPECT_EQ(decoded, ModelOf(text)) << text;
    }
    EXPECT_GE(texts, 6U);
}

/// Files of an earlier version stay readable: a change here is a new version of the format.
TEST_F(BinaryFormat, OfChunkFilesStays) {
    const std::vector<std::string> saved = ChunksOf(GOLDEN + "/one.ktf");
    ASSERT_EQ(saved.size(), 1U);
    EXPECT_EQ(KesTest::ReadFile(saved[0]), KesTest::ReadFile(GOLDEN + "/one.kcf"));
    EXPECT_EQ(RunDecoder({GOLDEN + "/one.kcf"}).out, KesTest::ReadFile(GOLDEN + "/one.json"));
}

/// The example of the document is the real file, byte for byte.
TEST_F(BinaryFormat, OfChunkFilesIsAsDocumented) {
    const std::vector<std::string> saved =
        ChunksOf(mFolder.Write("doc.ktf", "version=ostrell_520_2_3\nfile=bt1\nmax_acl_links = 3\n"));
    ASSERT_EQ(saved.size(), 1U);
    const Outcome printed = RunShell(mFolder, "od -An -tx1 '" + saved[0] + "'");
    const std::string document = KesTest::ReadFile(KES_TEST_SOURCE_DIR "/docs/kcf.md");
    EXPECT_NE(document.find(".kcf\n" + printed.out + "```"), std::string::npos) << printed.out;
}

/// A decoder that takes anything would prove nothing.
TEST_F(BinaryFormat, IsCheckedByTheDecoder) {
    const std::string good = KesTest::ReadFile(GOLDEN + "/one.kcf");
    std::string flipped = good;
    flipped[good.size() / 2] ^= 1;
    std::vector<std::string> files;
    for (const std::string& bad :
         {flipped, good + "x", good.substr(0, good.size() - 1), good.substr(0, 11), std::string()})
        files.push_back(mFolder.Write("bad" + std::to_string(files.size()), bad));
    files.push_back(mFolder / "missing");
    const Outcome outcome = RunDecoder(files);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
    for (const std::string& file : files)
        EXPECT_NE(outcome.err.find("decode_binary: " + file + ": "), std::string::npos) << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), files.size()) << outcome.err;
    EXPECT_EQ(RunDecoder({}).code, 2);
}

}  // namespace
