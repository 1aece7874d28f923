// Reading written texts: what is preserved and what is not.

#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IConfigReader.h"
#include "support/TempFolder.h"
#include "support/TextWriting.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace KesTest;

/// A configuration of one chip of the shipped example, with the real plug-ins.
class Loaded {
public:
    Loaded(const std::string& text, IMetadataProvider& provider) : mpProvider(&provider) {
        const std::size_t label = text.find('=') + 1;
        mContext.SetChip(text.substr(label, text.find('\n') - label));
        CKesContext context = mContext;
        context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
        std::stringstream stream(text);
        const std::unique_ptr<IConfigReader> reader(
            CReaderWriterFactory::Ref().CreateReader("KesText", "", static_cast<std::iostream*>(&stream)));
        reader->SetMetadataProvider(mpProvider);
        reader->SetObserver(&mConfig);
        const Messages messages;
        reader->Read(context);
        mFindings = messages.findings;
    }
    std::string Save(bool simple) {
        CKesContext context = simple ? Simple(mContext) : mContext;
        std::stringstream stream;
        const std::unique_ptr<IConfigWriter> writer(
            CReaderWriterFactory::Ref().CreateWriter("KesText", "", static_cast<std::iostream*>(&stream)));
        writer->SetMetadataProvider(mpProvider);
        EXPECT_TRUE(mConfig.Write(*writer, context));
        return stream.str();
    }
    std::string Model() const { return Dump(mConfig); }
    const std::string& Findings() const { return mFindings; }
    /// Removes the keys that are not in the metadata and returns their number.
    std::size_t DropUnknown() {
        std::size_t count = 0;
        for (const auto& [number, place] : mConfig.Subsystems()) {
            const std::list<CElement*> elements = place->Elements();
            for (const CElement* element : elements) {
                if (element->Metadata() != nullptr && element->Metadata()->IsValid()) continue;
                const std::vector<std::uint32_t> indices(element->Indices().begin(),
                                                         element->Indices().end());
                place->RemoveElement(element->PsId(), &indices);
                ++count;
            }
        }
        return count;
    }

private:
    IMetadataProvider* mpProvider;
    CKesContext mContext;
    CChipConfig mConfig;
    std::string mFindings;
};

TEST(TextRoundTrip, LoadSaveLoadGivesTheSameModel) {
    CMetadataProviderFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
    CReaderWriterFactory::Ref().Load(KES_TEST_PLUGIN_DIR);
    const std::unique_ptr<IMetadataProvider> provider(CMetadataProviderFactory::Ref().Create(
        "sqlite", std::string(KES_TEST_SHARE_DIR) + "/examples/ostrell.db"));
    ASSERT_NE(provider, nullptr);
    std::size_t files = 0;
    std::size_t unknown = 0;
    const std::string folder = std::string(KES_TEST_SOURCE_DIR) + "/examples/ostrell";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string path = entry.path().string();
        if (entry.path().extension() != ".ktf" || path.find("mistakes") != std::string::npos) continue;
        ++files;
        for (const bool simple : {false, true}) {
            Loaded first(ReadFile(path), *provider);
            EXPECT_EQ(first.Findings(), "") << path;
            const Loaded refused(first.Save(simple), *provider);
            const std::size_t dropped = first.DropUnknown();
            unknown += dropped;
            const std::string saved = first.Save(simple);
            Loaded second(saved, *provider);
            EXPECT_EQ(second.Findings(), "") << path << "\n" << saved;
            EXPECT_EQ(second.Model(), first.Model()) << path;
            EXPECT_EQ(second.Save(simple), saved) << path;

            // Keys without metadata can only be read in raw form; only they are rejected.
            EXPECT_EQ(refused.Model(), first.Model()) << path;
            const auto findings = std::ranges::count(refused.Findings(), '#');
            EXPECT_EQ(static_cast<std::size_t>(findings), dropped) << path << "\n" << refused.Findings();
        }
    }
    EXPECT_GE(files, 6U);
    EXPECT_GT(unknown, 0U);
}

/// A configuration with one element, written and read again, and the result of the reader.
struct Case {
    std::int32_t subsystem, device, store;
    std::string version;
    CElement* element;
    std::string line;  ///< part of the text
    std::string outcome;
};

TEST(TextRoundTrip, SomeOutputsCannotBeReadAgain) {
    MemoryProvider provider;
    for (const char* name : {"curator", "bt", "audio"}) provider.AddSubsystem(name);
    provider.Key(1, "rf_gain", "uint8").Range(0, 255);
    const Record& hex = provider.Key(2, "trim", "int8").Format("hexadecimal");
    const Record& address = provider.Key(3, "bd_addr", "octet_string").Format("mac_addr").Range(0, 6);
    provider.Key(4, "store", "uint8");
    provider.Key(5, "bt", "uint8").Indexes(1);
    provider.Key(6, "lost", "uint8").Label("C:\\");
    provider.Key(7, "words", "octet_string").Range(0, 9).Array(1, 9);
    const auto gain = [] { return Element(1, {Number<CUint8Payload>(5)}); };
    const auto words = [](std::uint32_t psid) {
        return Element(psid, {Number<CUint16Payload>(1), Number<CUint16Payload>(2)});
    };
    const std::string label = "sys_1_0";
    constexpr std::int32_t OTP = IStoreManager::DEVICE_OTP;
    constexpr std::int32_t EEPROM = IStoreManager::DEVICE_EEPROM;
    const Case rows[] = {
        {SUBSYSTEM_AUDIO, OTP, 1, label, gain(), "rf_gain = 0x05", "[3/1/1 1 rf_gain=u8:5]"},
        {SUBSYSTEM_GNSS, OTP, 1, label, gain(), "subsystem=<unknown>", "! 4:11 #12 Unknown subsystem"},
        {SUBSYSTEM_AUDIO, 12, 1, label, gain(), "device=\n",
         "! 5:8 #13 Unknown device | 7:1 #13 Unknown device"},
        {SUBSYSTEM_AUDIO, -1, 1, label, gain(), "device=none\n",
         "! 5:12 #13 Unknown device | 7:1 #13 Unknown device"},
        {SUBSYSTEM_AUDIO, EEPROM, 16, label, gain(), "file=audio16\n",
         "! 4:13 #17 Store out of range Store should be between 1 and 15 | 5:1 #12 Unknown subsystem"},
        {SUBSYSTEM_AUDIO, OTP, 1, "", gain(), "version=\n",
         "[3/1/1 1 rf_gain=u8:5] ! 1:9 #36 No system version"},
        {SUBSYSTEM_AUDIO, OTP, 1, "sys 1", gain(), "version=sys 1\n",
         "[3/1/1 1 rf_gain=u8:5] ! 2:1 #4 Unexpected text  unexpected text '1' at end of line"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(2, {Number<CInt8Payload>(-1, &hex)}), "trim = 0xFFFF\n",
         "[3/1/1] ! 7:12 #31 Number too large: trim"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, words(99), "99 = 0x01, \\\n 0x02\n",
         "[3/1/1] ! 8:6 #26 Unknown name: Id: 99"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(1, {}), "store=0x0001\n\n", "[3/1/1]"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(4, {Number<CUint8Payload>(5)}), "\nstore = 0x05\n",
         "[3/1/1] [3/1/5]"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(5, {Number<CUint8Payload>(5)}, {2}), "bt.2 = 0x05\n",
         "[3/1/1] [1/15/1 2 trim=i8:5]"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(3, {Octets("", &address)}), "bd_addr = \n", "[3/1/1]"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(6, {Number<CUint8Payload>(5)}), "# C:\\\nlost = 0x05\n",
         "[3/1/1]"},
        {SUBSYSTEM_AUDIO, OTP, 1, label, Element(1, {Number<CUint8Payload>(5)}, {0x80000000U}),
         "rf_gain.-2147483648 = 0x05\n", "[3/1/1] ! 7:9 #33 An unsigned number was expected: rf_gain"},
    };
    for (const Case& row : rows) {
        CChipConfig config;
        CKesContext place = Place(row.subsystem, row.device, row.store);
        config.OnElementFound(row.element, place);
        place.SetChip(row.version);
        const std::string text = Written(config, &provider, place);
        EXPECT_NE(text.find(row.line), std::string::npos) << text;
        EXPECT_EQ(Outcome(Read(text, provider)), row.outcome) << row.line;
    }
}

TEST(TextRoundTrip, RawValuesOfUnknownKeysArePreservedUnderTheRawTag) {
    const std::string text = "file=audio\n99 = % 1 0x1234 [ 01 FF ] %\n99.1 = %% \n";
    CChipConfig config;
    CKesContext context = OverwriteContext();
    const Reading first = Read(text, config, context);
    const std::string saved = Written(config, &TextKeys(), Raw());
    EXPECT_NE(saved.find("\n99 = % 0x01 0x1234 [ 01 FF ] %\n"), std::string::npos) << saved;
    EXPECT_EQ(Outcome(Read(saved)), "[3/15/1 99=u64:1 u64:4660 \"<01><FF>\"]");
}

TEST(TextRoundTrip, LongArraysAndDeepStructsArePreserved) {
    constexpr std::uint32_t ITEMS = 100000;
    constexpr int DEPTH = 64;
    MemoryProvider provider;
    provider.AddSubsystem("audio");
    provider.Key(1, "words", "uint16").Range(0, 65535).Array(1, ITEMS);
    const Record& list = provider.Field("list", "uint16").Range(0, 65535).Array(1, ITEMS);
    provider.Key(2, "lists", "LISTS").Struct({{&list, 16}});
    const Record* inner = &provider.Field("leaf", "uint8").Range(0, 255);
    const Record& side = provider.Field("side", "uint8").Range(0, 255);
    std::string value = "7";
    for (int depth = 0; depth < DEPTH; ++depth) {
        Record& outer =
            depth + 1 < DEPTH ? provider.Field("level", "LEVEL") : provider.Key(3, "deep", "LEVEL");
        inner = &outer.Struct({{inner, 8}, {&side, 8}});
        value = "{" + value + ", 1}";
    }
    std::string items = "{0";
    for (std::uint32_t i = 1; i < ITEMS; ++i) items += "," + std::to_string(i % 65536);
    items += "}";

    CChipConfig config;
    CKesContext context = OverwriteContext();
    const Reading first =
        Read("file=audio\nwords = " + items + "\nlists = {" + items + "}\ndeep = " + value + "\n", config,
             context, provider);
    ASSERT_EQ(first.findings, "");
    for (const CKesContext& form : {OverwriteContext(), Simple()}) {
        const std::string saved = Written(config, &provider, form);
        const Reading second = Read(saved, provider);
        EXPECT_EQ(second.findings, "");
        EXPECT_TRUE(second.dump == first.dump);
    }
}

}  // namespace
