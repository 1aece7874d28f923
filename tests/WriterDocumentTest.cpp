// The document around the values: header, sections, keys with their comments, and output files.

#include "support/TempFolder.h"
#include "support/TextWriting.h"

#include <gtest/gtest.h>
#include <locale>
#include <tuple>

namespace {

using namespace KesTest;

constexpr const char* BANNER = "##############################\n";

MemoryProvider& Keys() {
    static MemoryProvider& provider = []() -> MemoryProvider& {
        static MemoryProvider made;
        made.AddSubsystem("curator");
        made.AddSubsystem("bt", "bluetooth");
        made.AddSubsystem("audio");
        made.AddSubsystem("audio", "sound");
        made.AddSubsystem("WLAN", "wifi");
        made.Key(1, "rf_gain", "uint8").Label("Gain of the receiver");
        made.Key(2, "rf_offset", "int16").Indexes(1);
        made.Key(3, "words", "uint16").Array(1, 9).Label("Words");
        made.Key(5, "cells", "uint8").Label("Cells").Indexes(2);
        return made;
    }();
    return provider;
}

void Fill(CChipConfig& config) {
    CKesContext otp = Place(SUBSYSTEM_CURATOR, IStoreManager::DEVICE_OTP, 2);
    config.OnElementFound(Element(1, {Number<CUint8Payload>(5)}), otp);
    config.OnElementFound(Element(2, {Number<CInt16Payload>(-4)}, {2}), otp);
    config.OnElementFound(Element(4660, {Number<CUint32Payload>(0xBEEF)}), otp);
    config.OnElementFound(Element(3, {}), otp);
    CKesContext eeprom = Place(SUBSYSTEM_AUDIO, IStoreManager::DEVICE_EEPROM, 3);
    config.OnElementFound(Element(3, {Number<CUint16Payload>(7)}), eeprom);
}

TEST(WriterDocument, IsHeaderSectionsAndKeys) {
    CChipConfig config;
    EXPECT_EQ(Written(config, &Keys()), "version=sys_1_0\n");
    Fill(config);
    const std::string heading = std::string("\n") + BANNER + "subsystem=curator\ndevice=otp\nstore=0x0002\n";
    const std::string second = std::string("\n") + BANNER + "file=audio3\n";
    EXPECT_EQ(Written(config, &Keys()), "version=sys_1_0\n" + heading +
                                            "\n# Gain of the receiver\nrf_gain = 0x05\nrf_offset.2 = -4\n"
                                            "\n4660 = 0xBEEF\n\n" +
                                            second + "\n# Words\nwords = {0x07}\n");
    EXPECT_EQ(Written(config, &Keys(), Simple()), "version=sys_1_0\n" + heading +
                                                      "rf_gain = 0x05\nrf_offset.2 = -4\n4660 = 0xBEEF\n\n" +
                                                      second + "words = {0x07}\n");
    EXPECT_EQ(Written(config, nullptr), "version=sys_1_0\n" + heading + "\n\n\n\n" + second + "\n")
        << "without a provider there are no values";
}

TEST(WriterDocument, SectionsNameTheirPlace) {
    const struct {
        std::int32_t subsystem, device, store;
        std::string heading;
    } rows[] = {
        {SUBSYSTEM_CURATOR, 0, 0, "subsystem=curator\ndevice=rom\nstore=0x0000"},
        {SUBSYSTEM_BT, 1, 0xAB, "subsystem=bluetooth\ndevice=otp\nstore=0x00AB"},
        {SUBSYSTEM_WLAN, 2, 0x12345, "subsystem=wlan\ndevice=smem\nstore=0x12345"},
        {SUBSYSTEM_AUDIO, 4, 1, "subsystem=audio\ndevice=mtp\nstore=0x0001"},
        {SUBSYSTEM_GNSS, -1, 1, "subsystem=<unknown>\ndevice=none\nstore=0x0001"},
        {SUBSYSTEM_NFC, 7, 1, "subsystem=nfc\ndevice=\nstore=0x0001"},
        {SUBSYSTEM_JANITOR, 13, 1, "subsystem=janitor\ndevice=cur_cfg\nstore=0x0001"},
        {SUBSYSTEM_APP, 14, -1, "subsystem=app\ndevice=fw_cfg\nstore=0xFFFFFFFF"},
        {SUBSYSTEM_BLE, 15, 3, "file=ble3"},
        {SUBSYSTEM_PSAPPS, 15, 0x10002, "file=psapps2"},
        {SUBSYSTEM_PSAUDIO, 15, -1, "file=psaudio65535"},
        {SUBSYSTEM_NONE, 15, 1, "file=<unknown>1"},
        {SUBSYSTEM_MAX, 11, 1, "subsystem=<unknown>\ndevice=\nstore=0x0001"},
    };
    for (const auto& row : rows) {
        std::ostringstream stream;
        CKesWriter writer(&stream, &Keys());
        CKesContext place = Place(row.subsystem, row.device, row.store);
        writer.BeginSubsystem(place);
        writer.EndSubsystem(place);
        EXPECT_EQ(stream.str(), std::string("\n") + BANNER + row.heading + "\n");
    }
}

/// Each brace of an array is requested from the provider when it is needed.
TEST(WriterDocument, ArrayBracesAreRequestedOneByOne) {
    MemoryProvider provider;
    Record& key = provider.Key(3, "words", "uint16");
    for (const auto& [open, close, text] : {std::tuple(true, true, "words = {0x07}\n"),
                                            {true, false, "words = {0x07\n"},
                                            {false, true, "words = 0x07}\n"},
                                            {false, false, "words = 0x07\n"}}) {
        std::ostringstream stream;
        CKesWriter writer(&stream, &provider);
        CKesContext context;
        writer.BeginElement(context);
        writer.WriteUid(3, context);
        key.isArray = open;
        CUint16Payload value(7);
        value.Write(writer, context);
        key.isArray = close;
        writer.EndElement(context);
        EXPECT_EQ(stream.str(), text);
    }
}

TEST(WriterDocument, ElementsNeedNoDocument) {
    EXPECT_EQ(Written(Element(5, {Number<CUint8Payload>(1)}, {3, 0}), &Keys()),
              "\n# Cells\ncells.3.0 = 0x01\n");
    EXPECT_EQ(Written(Element(5, {}, {1, 2}), &Keys()), "\n") << "neither comment nor key";
    EXPECT_EQ(Written(Element(9, {Number<CUint8Payload>(1)}, {1}), &Keys()), "\n9.1 = 0x01\n");
    EXPECT_EQ(Written(Element(0xFFFFFFFF, {Octets("a")}), &Keys(), Simple()), "4294967295 = [ 61 ]\n");

    std::ostringstream stream;
    CKesWriter writer(&stream, nullptr);
    CKesContext context;
    const std::int32_t index = 4;
    const auto write = [&](IMetadataProvider* provider) {
        writer.SetMetadataProvider(provider);
        writer.BeginElement(context);
        writer.WriteUid(2, context);
        writer.WriteHeaderInfo(std::string(STR_HEADER_NUMINDICES), &index, sizeof index, context);
        writer.WriteHeaderInfo(std::string(STR_HEADER_INDEX), &index, sizeof index, context);
        CInt16Payload value(3);
        value.Write(writer, context);
        EXPECT_EQ(stream.str().find("= 3"), std::string::npos) << "a key goes out in one piece";
        writer.EndElement(context);
    };
    write(nullptr);
    EXPECT_EQ(stream.str(), "\n");
    write(&Keys());
    EXPECT_EQ(stream.str(), "\nrf_offset.4 = 3\n");
}

TEST(WriterDocument, TheStreamOfTheCallerStaysOpen) {
    std::ostringstream stream;
    CKesWriter writer(&stream, &Keys());
    CKesContext context = OverwriteContext();
    for (int round = 0; round < 2; ++round) {
        writer.Begin(context);
        writer.End(context);
    }
    stream << "more";
    EXPECT_EQ(stream.str(), "version=sys_1_0\nversion=sys_1_0\nmore");
}

struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(WriterDocument, NumbersDoNotFollowTheLocale) {
    std::ostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new Grouping));
    stream << 1000 << "\n";
    CKesWriter writer(&stream, &Keys());
    CKesContext place = Place(SUBSYSTEM_AUDIO, IStoreManager::DEVICE_EEPROM, 40000);
    writer.BeginSubsystem(place);
    const std::unique_ptr<CElement> element(Element(10000, {Number<CInt32Payload>(-5000)}, {6000}));
    element->Write(writer, place);
    EXPECT_EQ(stream.str(), std::string("1.000\n\n") + BANNER + "file=audio40000\n\n10000.6000 = -5000\n");
}

class WriterFile : public testing::Test {
protected:
    WriterFile() { Fill(mConfig); }
    bool Save(const std::string& path, const CKesContext& from = OverwriteContext()) {
        CKesContext context = from;
        CKesWriter writer(path, nullptr);
        writer.SetMetadataProvider(&Keys());
        return mConfig.Write(writer, context);
    }
    const Messages mMessages;
    const TempFolder mFolder;
    CChipConfig mConfig;
};

TEST_F(WriterFile, HoldsTheDocumentAndNothingOfAnOlderOne) {
    const std::string path = mFolder.Write("a.ktf", std::string(5000, 'x'));
    EXPECT_TRUE(Save(path));
    EXPECT_EQ(ReadFile(path), Written(mConfig, &Keys()));

    CKesContext place = Place(SUBSYSTEM_AUDIO, IStoreManager::DEVICE_EEPROM, 3);
    for (std::uint32_t psid = 10; psid < 20000; ++psid) {
        mConfig.OnElementFound(Element(psid, {Number<CUint32Payload>(psid)}), place);
    }
    EXPECT_TRUE(Save(path));
    EXPECT_EQ(ReadFile(path), Written(mConfig, &Keys())) << "larger than any buffer";
}

TEST_F(WriterFile, ThatCannotBeOpenedIsAnError) {
    for (const std::string& path : {mFolder / "missing/a.ktf", mFolder.Path(), std::string()}) {
        EXPECT_FALSE(Save(path));
        EXPECT_EQ(Messages::LastError(), "0 unable to open the file: " + path);
    }
    EXPECT_TRUE(std::filesystem::is_empty(mFolder.Path()));
}

TEST_F(WriterFile, ThatCannotBeWrittenIsAnError) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    EXPECT_FALSE(Save("/dev/full")) << "the last piece goes out at the close";
    EXPECT_EQ(Messages::LastError(), "0 unable to write to the file: /dev/full");
    Messages::Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    CKesContext place = Place(SUBSYSTEM_AUDIO, IStoreManager::DEVICE_EEPROM, 3);
    mConfig.OnElementFound(Element(10, {Octets(std::string(200000, 'x'))}), place);
    EXPECT_FALSE(Save("/dev/full")) << "an earlier piece fails";
    EXPECT_EQ(Messages::LastError(), "0 unable to write to the file: /dev/full");
}

TEST_F(WriterFile, IsNotTouchedForAContextWithoutAPlace) {
    const std::string path = mFolder.Write("a.ktf", "old");
    CBaseContext context;
    CKesWriter writer(path, &Keys());
    EXPECT_FALSE(mConfig.Write(writer, context));
    EXPECT_EQ(Messages::LastError(), "0 the passed context is invalid");
    EXPECT_EQ(ReadFile(path), "old");
}

}  // namespace
