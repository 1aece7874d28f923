// Configurations as folders of chunk files, through the real plug-in: what is read back and what is rejected.

#include "model/CRawKeysWriter.h"
#include "model/CReaderWriterFactory.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/binary/ValueCodec.h"
#include "support/TempFolder.h"
#include "support/TextWriting.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>

using namespace KesTest;

namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

void LoadPlugins() { CReaderWriterFactory::Ref().Load(KES_TEST_PLUGIN_DIR); }

bool Save(CChipConfig& config, const std::string& folder, IMetadataProvider& provider = TextKeys()) {
    LoadPlugins();
    const std::unique_ptr<IConfigWriter> writer(
        CReaderWriterFactory::Ref().CreateWriter("Packint", folder, nullptr));
    writer->SetMetadataProvider(&provider);
    CKesContext context = OverwriteContext();
    context.SetTag(STR_FILE_MODE, STR_FILE_MODE_DIR);
    return config.Write(*writer, context);
}

/// Reads one file. The error is empty on success.
std::string LoadInto(CChipConfig& config, const std::string& path, IMetadataProvider& provider = TextKeys()) {
    LoadPlugins();
    const Messages messages;
    const std::unique_ptr<IConfigReader> reader(
        CReaderWriterFactory::Ref().CreateReader("Packint", path, nullptr));
    reader->SetMetadataProvider(&provider);
    reader->SetObserver(&config);
    CKesContext context = OverwriteContext();
    const bool good = reader->Read(context);
    EXPECT_EQ(good, Messages::LastError().empty());
    return Messages::LastError();
}

std::string LoadedFrom(const Files& files, const TempFolder& folder,
                       IMetadataProvider& provider = TextKeys()) {
    CChipConfig config;
    for (const auto& [name, content] : files) {
        const std::string error = LoadInto(config, folder.Write("read.kcf", content), provider);
        if (!error.empty()) return error;
    }
    return Dump(config);
}

/// The configuration as text; raw values stay raw.
std::string AsText(CChipConfig& config) {
    std::ostringstream stream;
    CKesWriter text(&stream, &TextKeys());
    CRawKeysWriter front(text, TextKeys());
    CKesContext context = OverwriteContext();
    config.Write(front, context);
    return stream.str();
}

/// Every form of value, in several places, including raw values of known keys, and unknown keys.
const std::string TEXT =
    "file=audio1\nu8=255\nu16=65535\nu32=0xFFFFFFFF\nu64=0x7FFFFFFFFFFFFFFF\ni8=-128\ni16=-32768\n"
    "i32=-2147483648\ni64=-9223372036854775808\nwhole=-5\nblob=[]\npair=[00 FF]\ndev_name=\"a\\0b\"\n"
    "bd_addr=01:02:03:04:05:06\nmode=MODE-X\nwords={1, 2, 3}\nmodes={MODE_A}\nnames={\"a\", \"\"}\n"
    "small=% 200 %\npair=% [01 02 03] %\nwords=% 1 %\nmode=% 3 %\n4000000000=% 0xFFFFFFFFFFFFFFFF [01] %\n"
    "subsystem=bt\ndevice=otp\nstore=0x1234\nu8=% 1 2 %\n"
    "subsystem=curator\ndevice=rom\nstore=0\nrf_table.1.4294967295=-1\nrf_offset.0=5\n"
    "subsystem=curator\ndevice=smem\nstore=7\nu8=7\n";

TEST(ChunkFiles, GiveBackEveryKeyAndValue) {
    const TempFolder folder;
    CChipConfig config;
    CKesContext context = OverwriteContext();
    ASSERT_EQ(Read(TEXT, config, context).findings, "");
    context.SetTag(STR_INSERT_MODE, STR_APPEND);
    ASSERT_EQ(Read("file=audio1\nu8=1\nu8=2\nu16=\nrf_offset.0=1\nrf_offset.0=2\n", config, context).findings,
              "");
    ASSERT_TRUE(Save(config, folder / "chunks")) << Messages::LastError();

    const Files files = FilesOf(folder / "chunks");
    std::set<std::string> names;
    for (const auto& [name, content] : files) names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"audio-eeprom-0001.kcf", "bt-otp-4660.kcf",
                                            "curator-rom-0000.kcf", "curator-smem-0007.kcf"}));
    CChipConfig loaded;
    for (const auto& [name, content] : files) EXPECT_EQ(LoadInto(loaded, folder / ("chunks/" + name)), "");
    EXPECT_EQ(config.FirstDifference(loaded).value_or("same"), "same");
    EXPECT_EQ(Dump(loaded), Dump(config)) << "places come in the order of their names here";
    EXPECT_EQ(DumpStores(loaded.Stores()), DumpStores(config.Stores()));

    EXPECT_EQ(AsText(loaded), AsText(config)) << "what was given raw is still raw in a text";
    ASSERT_TRUE(Save(loaded, folder / "again"));
    EXPECT_EQ(FilesOf(folder / "again"), files);
    for (const auto& [name, content] : files) LoadInto(loaded, folder / ("chunks/" + name));
    EXPECT_EQ(config.FirstDifference(loaded).value_or("same"), "same") << "a second time nothing is doubled";
}

/// One chunk file of a place with these records.
std::string ChunkOf(const std::string& records, std::uint32_t keys = 1,
                    const std::string& system = "sys_1_0") {
    return EncodeChunk({system, {{3, 15, 1, {}, 1}, keys, records}});
}

std::string Bytes(std::initializer_list<int> values) { return {values.begin(), values.end()}; }

/// A field that was given raw need not match the metadata, and must be marked as raw.
TEST(ChunkFiles, GiveBackStructsWithRawFields) {
    MemoryProvider provider;
    provider.AddSubsystem("audio");
    provider.AddChip("sys_1_0", "70");
    const auto& blob = provider.Field("blob", "octet_string").Range(1, 3);
    const auto& words = provider.Field("words", "uint16").Range(0, 9).Array(1, 2);
    const auto& mode = provider.Field("mode", "MODE").Enum({{"MODE_A", 0}, {"MODE_B", 1}});
    provider.Key(1, "all", "ALL").Struct({{&blob, 24}, {&words, 32}, {&mode, 8}});
    provider.Key(2, "list", "ALL").Struct({{&blob, 24}, {&words, 32}, {&mode, 8}}).Array(1, 2);
    const TempFolder folder;
    const auto comesBack = [&](CChipConfig& config, const std::string& what) {
        ASSERT_TRUE(Save(config, folder / "chunks", provider)) << Messages::LastError();
        CChipConfig loaded;
        EXPECT_EQ(LoadInto(loaded, folder / "chunks/audio-eeprom-0001.kcf", provider), "") << what;
        EXPECT_EQ(Dump(loaded), Dump(config)) << what;
        const Files files = FilesOf(folder / "chunks");
        ASSERT_TRUE(Save(loaded, folder / "chunks", provider));
        EXPECT_EQ(FilesOf(folder / "chunks"), files) << what;
    };
    for (const char* value : {
             "{[01 02], {1, 2}, MODE_B}",
             "{% [01 02 03 04] %, {1}, MODE_A}",
             "{[01], {% 300 %, 2}, % 7 %}",
             "{% 1 %, {% [01] %}, MODE_A}",
         }) {
        CChipConfig config;
        CKesContext context = OverwriteContext();
        const std::string text = std::string("file=audio1\nall=") + value + "\n";
        ASSERT_EQ(Read(text, config, context, provider).findings, "") << value;
        comesBack(config, value);
    }
    // Values that no text can express: raw composites without items, or of a form that the field does not
    // have.
    const std::string good = Bytes({8, 1, 7}) + Bytes({0x15, 1, 5, 1});
    for (const std::string& last : {Bytes({0x3A, 0}), Bytes({0x38, 0}), Bytes({0x39, 1, 4, 1}),
                                    Bytes({0x38, 1, 8, 1, 65}), Bytes({0x3A, 1, 0x19, 0})}) {
        CChipConfig config;
        const std::string chunk = ChunkOf(Bytes({0, 1, 1, 0x19, 3}) + good + last);
        ASSERT_EQ(LoadInto(config, folder.Write("made.kcf", chunk), provider), "");
        comesBack(config, DumpBytes(last));
    }
    // A raw item makes its neighbour raw, too; items within it are not marked separately.
    CChipConfig config;
    const std::string chunk =
        ChunkOf(Bytes({0, 2, 2, 0x39, 3}) + good + Bytes({0x1A, 0, 0x19, 3}) + good + Bytes({0x3A, 0}));
    ASSERT_EQ(LoadInto(config, folder.Write("made.kcf", chunk), provider), "");
    comesBack(config, "raw and other items");
}

constexpr const char* CORRUPT = "0 error converting data from or to a binary [the input seems corrupt]: ";

TEST(ChunkFiles, AreRejectedAsAWholeWhenDamaged) {
    const TempFolder folder;
    const std::string good = ChunkOf(Bytes({0, 1, 1, 4, 77}));
    ASSERT_EQ(LoadedFrom({{"a", good}}, folder), "[3/15/1 1 u8=u8:77]");
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_TRUE(LoadedFrom({{"a", good.substr(0, size)}}, folder).starts_with(CORRUPT)) << size;
    }
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        std::string flipped = good;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
        EXPECT_TRUE(LoadedFrom({{"a", flipped}}, folder).starts_with(CORRUPT)) << bit;
    }
    EXPECT_TRUE(LoadedFrom({{"a", good + "x"}}, folder).starts_with(CORRUPT));
    EXPECT_EQ(LoadedFrom({{"a", ChunkOf({}, 0, "sys_arm")}}, folder),
              "0 invalid operation: " + (folder / "read.kcf") +
                  ": is for system sys_arm, the configuration is for sys_1_0");
    CChipConfig config;
    EXPECT_EQ(LoadInto(config, folder / "none"),
              "0 unable to open the file: " + (folder / "none") + ": No such file or directory");
}

/// A file with a correct checksum is checked as well. A valid key comes first, and must not be taken either.
TEST(ChunkFiles, AreCheckedAgainstTheirOwnLengthsAndTheMetadata) {
    const std::string huge = Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1});
    std::string nested;
    for (int i = 0; i < 40; ++i) nested += Bytes({0x19, 1});
    const struct {
        std::string records;
        std::uint32_t keys;
        std::string cause;
    } rows[] = {
        {{}, 1, "audio, eeprom, store 1: the number of keys is too large"},
        {{}, 0xFFFFFFFF, "audio, eeprom, store 1: the number of keys is too large"},
        {Bytes({0, 1, 1, 4, 7, 0, 0, 0}), 1, "3 bytes stand behind the end of the data"},
        {Bytes({0, 1, 1, 4, 7, 0}), 2, "a number ends behind the data"},
        {Bytes({0, 0, 0}), 1, "there is no key of the number 0"},
        {Bytes({0x80, 0, 1, 0}), 1, "a number is malformed"},
        {huge + "\1\1", 1, "a number of indexes is 18446744073709551615, at most 4294967295 is possible"},
        {Bytes({0xFE, 0xFF, 0xFF, 0xFF, 0x0F, 1, 0}), 1, "a number of indexes ends behind the data"},
        {Bytes({0, 1}) + huge, 1, "u8 (1): a length of 18446744073709551615 ends behind the data"},
        {Bytes({0, 1, 2, 4, 1, 4, 1}), 1, "u8 (1): must have 1 items, 2 found"},
        {Bytes({0, 1, 1, 4}) + Bytes({0x80, 2}), 1, "u8 (1): a number is 256, at most 255 is possible"},
        {Bytes({0, 1, 1, 6, 1}), 1, "u8 (1): must have a value of the type uint8"},
        {Bytes({0, 1, 1, 8, 0}), 1, "u8 (1): must have a value of the type uint8"},
        {Bytes({0, 1, 1, 0x40, 0}), 1, "u8 (1): there is no type of values 64"},
        {Bytes({0, 1, 1, 0x0B, 0}), 1, "u8 (1): there is no type of values 11"},
        {Bytes({0, 1, 1, 9, 0}), 1, "u8 (1): a struct is no composite"},
        {Bytes({0, 1, 1, 0x19, 0}), 1, "u8 (1): must have a value of the type uint8"},
        {Bytes({0, 10, 1, 4, 4}), 1, "small (10): must be between 1 and 3 (val=4)"},
        {Bytes({0, 9, 1, 3, 11}), 1, "whole (9): must be between -5 and 5 (val=-6)"},
        {Bytes({0, 14, 1, 8, 3, 1, 2, 3}), 1, "pair (14): must have 2 bytes, 3 found"},
        {Bytes({0, 14, 1, 8, 3, 1, 2}), 1, "pair (14): a length of 3 ends behind the data"},
        {Bytes({0, 17, 1, 10, 6, 6}) + "MODE_A", 1, "mode (17): has no enumerator MODE_A of the value 3"},
        {Bytes({0, 19, 4, 5, 1, 5, 1, 5, 1, 5, 1}), 1,
         "words (19): must have between 1 and 3 items, 4 found"},
        {Bytes({2, 1, 5, 1, 4, 7}), 1, "u8 (1.5): requires 0 indices"},
        {Bytes({2}) + Bytes({0xB5, 0x24, 5, 1, 0, 0}), 1, "rf_table (4661.5): requires 2 indices"},
        {Bytes({0, 99, 1}) + nested, 1, "key 99: a value is nested too deeply"},
    };
    const TempFolder folder;
    for (const auto& row : rows) {
        const bool isAlone = row.records.empty();
        const std::string chunk =
            isAlone ? ChunkOf({}, row.keys) : ChunkOf(Bytes({0, 2, 1, 5, 9}) + row.records, row.keys + 1);
        const std::string error = LoadedFrom({{"a", chunk}}, folder);
        EXPECT_EQ(error.substr(0, error.find(": " + row.cause)), std::string(CORRUPT) + (folder / "read.kcf"))
            << error << " instead of " << row.cause;
    }
    // Raw values and unknown keys are not checked.
    EXPECT_EQ(
        LoadedFrom({{"a", ChunkOf(Bytes({0, 10, 1, 0x27, 100, 0, 99, 1, 0x19, 1, 8, 1, 65}), 2)}}, folder),
        "[3/15/1 10 small=u64:100; 99=struct{\"A\"}]");
    EXPECT_TRUE(LoadedFrom({{"a", ChunkOf(Bytes({0, 2, 1, 5, 9}))}}, folder).starts_with("[3/15/1 2 u16"));
}

}  // namespace
