// The bytes of binary files: the library, the document of the format and a decoder that was written from the
// document alone agree on them, and they do not change.

#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IConfigReader.h"
#include "model/IMetadataProvider.h"
#include "support/DeviceSession.h"
#include "support/Dump.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

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

/// A value from the decoder, in the form in which `DumpPayload` writes those of the model.
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
/// The keys of each place, by `SUBSYSTEM/DEVICE/STORE#ORDER`.
using Places = std::map<std::string, Keys>;

void AddDecoded(const Json& holder, Places& places) {
    for (const Json& place : holder["places"]) {
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
}

Places ShowDecoded(const Json& document) {
    Places places;
    if (document.contains("places")) AddDecoded(document, places);
    for (const Json& store : document.value("stores", Json::array())) AddDecoded(store, places);
    return places;
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

std::string SystemOf(const std::string& text) {
    const std::string content = KesTest::ReadFile(text);
    const std::size_t begin = content.find("version=") + 8;
    return content.substr(begin, content.find('\n', begin) - begin);
}

/// The model that the text reader builds from a text.
Places ModelOf(const std::string& text) {
    std::stringstream stream(KesTest::ReadFile(text));
    std::iostream* const input = &stream;
    const std::unique_ptr<IMetadataProvider> provider(
        CMetadataProviderFactory::Ref().Create("sqlite", EXAMPLE_DATABASE));
    const std::unique_ptr<IConfigReader> reader(
        CReaderWriterFactory::Ref().CreateReader("KesText", {}, input));
    CChipConfig config;
    reader->SetMetadataProvider(provider.get());
    reader->SetObserver(&config);
    CKesContext context;
    context.SetChip(SystemOf(text));
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    EXPECT_TRUE(reader->Read(context)) << LastError();
    return ShowModel(config);
}

class BinaryFormat : public DeviceSession {
protected:
    static std::unique_ptr<host::FrameworkFacade> Loaded(const std::string& text) {
        auto facade = Blank(SystemOf(text));
        EXPECT_TRUE(facade->LoadText(text, false)) << LastError();
        return facade;
    }
    std::vector<std::string> ChunksOf(host::FrameworkFacade& facade, const std::string& name) {
        EXPECT_TRUE(facade.SaveBinary(mFolder / name)) << LastError();
        std::vector<std::string> files;
        for (const auto& entry : fs::directory_iterator(mFolder / name)) files.push_back(entry.path());
        return files;
    }
};

TEST_F(BinaryFormat, IsReadIdenticallyByAnotherDecoder) {
    constexpr std::uint32_t ENOUGH = 64U << 10U;
    constexpr ImageFamily FAMILIES[] = {ImageFamily::Eeprom, ImageFamily::Isp, ImageFamily::Kld};
    std::size_t texts = 0;
    for (const auto& entry : fs::directory_iterator(EXAMPLE_FOLDER)) {
        const std::string text = entry.path();
        if (entry.path().extension() != ".ktf" || text.ends_with("with-mistakes.ktf")) continue;
        ++texts;
        const auto facade = Loaded(text);
        std::vector<std::string> files = ChunksOf(*facade, entry.path().stem());
        const std::size_t chunks = files.size();
        for (const ImageFamily family : FAMILIES) {
            files.push_back(
                Image(family, ENOUGH, entry.path().stem().string() + std::string(NameOf(family))));
            ASSERT_TRUE(Save(*facade, family, files.back())) << LastError();
        }
        Places wanted = ModelOf(text);
        Places ofChunks;
        const std::vector<Json> documents = Decoded(files);
        for (std::size_t i = 0; i < files.size(); ++i) {
            EXPECT_EQ(documents[i]["system"], SystemOf(text)) << files[i];
            Places places = ShowDecoded(documents[i]);
            if (i >= chunks)
                EXPECT_EQ(places, wanted) << files[i];
            else
                ofChunks.merge(places);
        }
        EXPECT_EQ(ofChunks, wanted) << text;
    }
    EXPECT_GE(texts, 6U);
}

/// Files of an earlier version stay readable: a change here requires a new version of the format.
TEST_F(BinaryFormat, OfFilesDoesNotChange) {
    const std::vector<std::string> chunks = ChunksOf(*Loaded(GOLDEN + "/one.ktf"), "chunks");
    ASSERT_EQ(chunks.size(), 1U);
    EXPECT_EQ(KesTest::ReadFile(chunks[0]), KesTest::ReadFile(GOLDEN + "/one.kcf"));

    const std::string image = mFolder / "two.img";
    ImageGeometry geometry{ImageFamily::Kld, CHIP_ID, {}, 2048, 7, {}};
    VemoKesConfigTools::CreateImage(image, geometry, /*force=*/false);
    auto facade = Blank();
    ASSERT_TRUE(facade->CreateKeyStore(image, host::DEVICE_TYPE_SMEM, 3, 48, 5, true)) << LastError();
    for (const std::string name : {"/two-first.ktf", "/two-second.ktf"})
        ASSERT_TRUE(Loaded(GOLDEN + name)->SaveToDeviceOstrel(image, true)) << LastError();
    EXPECT_TRUE(KesTest::ReadFile(image) == KesTest::ReadFile(GOLDEN + "/two.img"));

    EXPECT_EQ(RunDecoder({GOLDEN + "/one.kcf", GOLDEN + "/two.img"}).out,
              KesTest::ReadFile(GOLDEN + "/decoded.json"));
}

/// The example in the document is a real file, byte for byte.
TEST_F(BinaryFormat, OfChunkFilesIsAsDocumented) {
    const auto facade = Holding("version=ostrell_520_2_3\nfile=bt1\nmax_acl_links = 3\n");
    const std::vector<std::string> saved = ChunksOf(*facade, "doc");
    ASSERT_EQ(saved.size(), 1U);
    const Outcome printed = RunShell(mFolder, "od -An -tx1 '" + saved[0] + "'");
    const std::string document = KesTest::ReadFile(KES_TEST_SOURCE_DIR "/docs/kcf.md");
    EXPECT_NE(document.find(".kcf\n" + printed.out + "```"), std::string::npos) << printed.out;
}

/// A decoder that accepts everything would prove nothing.
TEST_F(BinaryFormat, IsCheckedByTheDecoder) {
    std::vector<std::string> files = {mFolder / "missing", mFolder.Write("empty", "")};
    for (const std::string name : {"/one.kcf", "/two.img"}) {
        const std::string good = KesTest::ReadFile(GOLDEN + name);
        std::string flipped = good;
        flipped[170] ^= 1;
        for (const std::string& bad :
             {flipped, good + "x", good.substr(0, good.size() - 1), good.substr(0, 11)})
            files.push_back(mFolder.Write("bad" + std::to_string(files.size()), bad));
    }
    const Outcome outcome = RunDecoder(files);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
    for (const std::string& file : files)
        EXPECT_NE(outcome.err.find("decode_binary: " + file + ": "), std::string::npos) << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), files.size()) << outcome.err;
    EXPECT_EQ(RunDecoder({}).code, 2);
}

}  // namespace
