// Device images: what is saved, kept, rejected and read back, through the host API and the real plug-ins.

#include "model/CKesContext.h"
#include "model/CReaderWriterFactory.h"
#include "model/CStoreInfo.h"
#include "model/IStoreManager.h"
#include "support/DeviceSession.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::ImageFamily;
using KesTest::ImageGeometry;
using KesTest::LastError;
using VemoKesConfigTools::BankState;
using VemoKesConfigTools::CreateImage;
using VemoKesConfigTools::ReadImageInfo;
using VemoKesConfigTools::Refusal;

namespace {

constexpr std::uint32_t KIB = 1024;

/// The lines of one place in a text.
std::string At(const std::string& device, int store, const std::string& keys) {
    return "subsystem=bt\ndevice=" + device + "\nstore=" + std::to_string(store) + "\n" + keys + "\n";
}

/// Collects warnings during its lifetime.
class Warnings final : public VemoKesConfigTools::CMessageHandlerObserver {
public:
    Warnings() { VemoKesConfigTools::CTheMsgHnd::AddObserver(*this); }
    ~Warnings() override { VemoKesConfigTools::CTheMsgHnd::RemoveObserver(*this); }
    void OnStatus(std::int32_t level, const std::string& text) override {
        if (level == VemoKesConfigTools::CMessageHandler::STATUS_LEVEL_WARNING) texts += text;
    }
    std::string texts;
};

class DeviceImages : public KesTest::DeviceSession {
protected:
    /// Saves a text to a device and returns the content of the device. An error is returned without the path;
    /// it must have changed nothing.
    std::string Saved(ImageFamily family, const std::string& path, const std::string& text,
                      bool merge = false) {
        const auto facade = Holding(text);
        const std::string before = KesTest::ReadFile(path);
        const bool good = merge ? facade->SaveToDeviceOstrel(path, true) : Save(*facade, family, path);
        if (good) return Read(family, path);
        EXPECT_EQ(KesTest::ReadFile(path), before);
        return WithoutNeed(WithoutPath(LastError(), path));
    }
    std::string SavedKld(const std::string& path, const std::string& text, bool merge = false) {
        return Saved(ImageFamily::Kld, path, text, merge);
    }
    /// Replaces the needed size, which depends on the encoding.
    static std::string WithoutNeed(const std::string& error) {
        const std::size_t end = error.find(" are needed");
        if (end == std::string::npos) return error;
        const std::size_t begin = error.find_last_not_of("0123456789", end - 1) + 1;
        return error.substr(0, begin) + "N" + error.substr(end);
    }
    static std::string WithoutPath(const std::string& error, const std::string& path) {
        return KesTest::Replaced(error, path + ": ", "");
    }
    /// The error of `CreateImage`, or "made".
    std::string Made(const ImageGeometry& geometry, bool force = false) {
        try {
            CreateImage(mFolder / "made.img", geometry, force);
            return "made";
        } catch (const Refusal& refusal) {
            return VemoKesConfigTools::TextOf(refusal, "C");
        }
    }
    /// `DEVICE/STORE SIZE FREE`, followed by "p" for a pair.
    static std::string Stores(FrameworkFacade& facade) {
        std::string text;
        for (const auto& store : facade.GetStores()) {
            if (!text.empty()) text += "; ";
            text += std::to_string(store->DeviceId()) + "/" + std::to_string(store->StoreId()) + " " +
                    std::to_string(store->StoreSize()) + " " + std::to_string(store->StoreFreeSize()) +
                    (store->Paired() ? "p" : "");
        }
        return text;
    }
};

TEST_F(DeviceImages, ExamplesAreReadBackFromEveryFamilyAndNotWrittenTwice) {
    std::size_t tried = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KesTest::EXAMPLE_FOLDER)) {
        const std::string text = KesTest::ReadFile(entry.path().string());
        if (!text.starts_with("version=")) continue;
        const std::string system = text.substr(8, text.find('\n') - 8);
        for (const ImageFamily family : {ImageFamily::Eeprom, ImageFamily::Isp, ImageFamily::Kld}) {
            const auto facade = Blank(system);
            facade->LoadText(entry.path().string(), false);
            const std::string path = Image(family, 256 * KIB);
            ASSERT_TRUE(Save(*facade, family, path)) << LastError() << entry.path();
            const auto back = Blank(system);
            ASSERT_TRUE(Load(*back, family, path)) << LastError() << entry.path();
            EXPECT_TRUE(facade->FirstDifference(*back).IsNull()) << facade->FirstDifference(*back).ToNarrow();
            const std::string bytes = KesTest::ReadFile(path);
            ASSERT_TRUE(Save(*back, family, path)) << LastError();
            EXPECT_EQ(KesTest::ReadFile(path), bytes) << entry.path();
            ++tried;
        }
    }
    EXPECT_GE(tried, 12U);
}

TEST_F(DeviceImages, AMergeReplacesEqualKeysAndASaveWithoutMergeKeepsNothing) {
    const struct {
        bool merge;
        std::string text;
        const char* expected;
    } rows[] = {
        {false,
         At("smem", 1, "hci_trace_mask=1\ntx_power_correction.3=-1\nlost_links=7") +
             At("eeprom", 2, "max_acl_links=3"),
         "1/2/1 4144=0x01; 1/2/1 4117.3=-1; 1/2/1 4150=7; 1/15/2 4101=3"},
        {true, At("smem", 1, "tx_power_correction.4=2\ntx_power_correction.3=-9"),
         "1/2/1 4144=0x01; 1/2/1 4117.3=-9; 1/2/1 4150=7; 1/2/1 4117.4=2; 1/15/2 4101=3"},
        {true, At("mtp", 9, "hci_trace_mask=6") + At("eeprom", 2, "hci_trace_mask=7"),
         "1/2/1 4144=0x01; 1/2/1 4117.3=-9; 1/2/1 4150=7; 1/2/1 4117.4=2; 1/4/9 4144=0x06; 1/15/2 4101=3; "
         "1/15/2 4144=0x07"},
        {false, At("mtp", 9, "hci_trace_mask=8"), "1/4/9 4144=0x08"},
        {false, "", ""},
    };
    const std::string path = Image(ImageFamily::Kld, 16 * KIB);
    for (const auto& row : rows) EXPECT_EQ(SavedKld(path, row.text, row.merge), row.expected) << row.text;
}

TEST_F(DeviceImages, OneTimeProgrammableStoresOnlyGainBits) {
    const std::string invalid = "0 invalid operation: one-time-programmable store otp 1: key ";
    const struct {
        bool merge;
        const char* keys;
        std::string expected;
    } rows[] = {
        {false, "hci_trace_mask=0x5\npin_code=\"1\"", "1/1/1 4144=0x05; 1/1/1 4133=\"1\""},
        {false, "hci_trace_mask=0x7\npin_code=\"1\"", "1/1/1 4144=0x07; 1/1/1 4133=\"1\""},
        {true, "hci_trace_mask=0xF", "1/1/1 4144=0x0F; 1/1/1 4133=\"1\""},
        {true, "hci_trace_mask=0xE", invalid + "4144 would have bits cleared"},
        {false, "hci_trace_mask=0xFF", invalid + "4133 would be removed"},
        {true, "pin_code=\"11\"", invalid + "4133 would get a value of a different type or size"},
        {true, "pin_code=\"0\"", invalid + "4133 would have bits cleared"},
        {true, "coex_pads={1, 2}\npin_code=\"3\"", "1/1/1 4144=0x0F; 1/1/1 4133=\"3\"; 1/1/1 4126={1, 2}"},
        {true, "coex_pads={1, 3}", "1/1/1 4144=0x0F; 1/1/1 4133=\"3\"; 1/1/1 4126={1, 3}"},
        {true, "coex_pads={0, 3}", invalid + "4126 would have bits cleared"},
        {true, "coex_pads={1, 3, 4}", invalid + "4126 would get a value of a different type or size"},
        {true, "hci_trace_mask=0x1F\npin_code=\"3\"\ntx_power_correction.3=-1\ntx_power_correction.2=-1",
         "0 unable to write to the file: store otp 1 has room for 0 bytes, N are needed"},
    };
    const std::string path = Image(ImageFamily::Kld, 4 * KIB);
    const auto memory = [&] {
        // It is the first memory of the table.
        const std::string bytes = KesTest::ReadFile(path);
        return bytes.substr(
            static_cast<unsigned char>(bytes[68]) + 256U * static_cast<unsigned char>(bytes[69]), 256);
    };
    std::string before = memory();
    EXPECT_EQ(before, std::string(256, '\0'));
    for (const auto& row : rows) {
        EXPECT_EQ(SavedKld(path, At("otp", 1, row.keys), row.merge), row.expected) << row.keys;
        const std::string after = memory();
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(before[i] & ~after[i], 0) << row.keys << " " << i;
        before = after;
    }
}

TEST_F(DeviceImages, EachOfSeveralKeysWithOneNumberOnlyGainsBits) {
    const std::string path = Image(ImageFamily::Kld, 16 * KIB);
    const auto bt = KesTest::SubsystemNamed("bt");
    const struct {
        const char* second;
        const char* error;
    } rows[] = {
        {"6", "none"},
        {"7", "none"},
        {"5", "0 invalid operation: one-time-programmable store otp 1: key 4144 would have bits cleared"},
        {nullptr, "0 invalid operation: one-time-programmable store otp 1: key 4144 would be removed"}};
    for (const auto& row : rows) {
        const auto facade = Blank();
        KesTest::ClearErrors();
        ASSERT_TRUE(facade->SetValue(bt, 4144, nullptr, DEVICE_TYPE_OTP, 1, 1, "1")) << LastError();
        if (row.second != nullptr) {
            ASSERT_TRUE(facade->AddValue(bt, 4144, nullptr, DEVICE_TYPE_OTP, 1, 1, row.second))
                << LastError();
        }
        facade->SaveToDeviceOstrel(path, false);
        EXPECT_EQ(WithoutPath(LastError(), path), row.error);
    }
    EXPECT_EQ(Read(ImageFamily::Kld, path), "1/1/1 4144=0x01; 1/1/1 4144=0x07");
}

TEST_F(DeviceImages, ContentsThatDoNotFitAreRejectedWithBothSizes) {
    std::string many;
    for (int i = 0; i < 60; ++i) many += "tx_power_correction." + std::to_string(i) + "=-3\n";
    const std::string cannot = "0 unable to write to the file: ";
    EXPECT_EQ(Saved(ImageFamily::Eeprom, Image(ImageFamily::Eeprom, 512), At("eeprom", 1, many)),
              cannot + "store eeprom has room for 48 bytes, N are needed");
    EXPECT_EQ(Saved(ImageFamily::Isp, Image(ImageFamily::Isp, 2 * KIB), At("fw_cfg", 1, many)),
              cannot + "store fw_cfg has room for 240 bytes, N are needed");
    const std::string path = Image(ImageFamily::Kld, 4 * KIB);
    EXPECT_EQ(SavedKld(path, At("otp", 1, many)),
              cannot + "store otp 1 takes 448 bytes of its memory, 256 are left");
    EXPECT_EQ(SavedKld(path, At("smem", 1, "max_acl_links=3")), "1/2/1 4101=3");
    EXPECT_EQ(SavedKld(path, At("smem", 1, many)),
              cannot + "store smem 1 has room for 240 bytes, N are needed");
    EXPECT_EQ(SavedKld(path, At("smem", 1, "max_acl_links=4") + At("smem", 2, "max_acl_links=5") +
                                 At("smem", 3, many)),
              cannot + "store smem 3 takes 896 bytes of its memory, 384 are left")
        << "what others need at least is kept for them";
}

TEST_F(DeviceImages, EitherHalfOfAPairIsEnoughAndIsRepaired) {
    const std::string held = "1/2/1 4101=2";
    const struct {
        std::vector<std::uint32_t> damaged;  ///< halves
        std::string expected;
        const char* warning;
    } rows[] = {
        {{}, held, ""},
        {{0}, held, ": store smem 1: half 0 of the pair is damaged, the other one is used"},
        {{1}, held, ": store smem 1: half 1 of the pair is damaged, the other one is used"},
        {{0, 1}, "", ""},
    };
    for (const auto& row : rows) {
        const std::string path = Image(ImageFamily::Kld, 16 * KIB);
        const auto facade = Holding(At("smem", 1, "max_acl_links=1"));
        ASSERT_TRUE(facade->CreateKeyStore(path, DEVICE_TYPE_SMEM, 1, 256, 0, true));
        ASSERT_TRUE(facade->SaveToDeviceOstrel(path, true)) << LastError();
        ASSERT_EQ(SavedKld(path, At("smem", 1, "max_acl_links=2")), held);
        std::string bytes = KesTest::ReadFile(path);
        const auto states = [&] {
            const auto info = ReadImageInfo(path);
            std::string text;
            for (const auto& bank : info.stores.at(1).banks)
                text += "pcx"[bank.state == BankState::Current    ? 1
                              : bank.state == BankState::Previous ? 0
                                                                  : 2];
            return text;
        };
        EXPECT_EQ(states(), "pcpc");
        // The four banks of the store are contiguous, and the current content is in the second and fourth.
        const std::size_t first = bytes.find("KBNK", bytes.find("KBNK") + 1);
        for (const std::uint32_t half : row.damaged) bytes[first + half * 512 + 20] ^= 1;
        mFolder.Write("device.img", bytes);
        const Warnings warnings;
        const std::string outcome = Read(ImageFamily::Kld, path);
        EXPECT_EQ(warnings.texts, row.warning[0] == '\0' ? "" : path + row.warning);
        if (row.expected.empty()) {
            EXPECT_NE(outcome.find("store smem 1 is damaged"), std::string::npos) << outcome;
            EXPECT_FALSE(Holding(At("smem", 1, "max_acl_links=3"))->SaveToDeviceOstrel(path, true));
        } else {
            EXPECT_EQ(outcome, row.expected);
            EXPECT_NE(SavedKld(path, At("mtp", 1, "max_acl_links=2"), /*merge=*/true), held);
            const std::string after = states();
            EXPECT_EQ(std::ranges::count(after, 'c'), 2) << "a save of something else mends it too";
        }
        EXPECT_EQ(SavedKld(path, At("smem", 1, "max_acl_links=4")), "1/2/1 4101=4") << "all is replaced";
    }
}

TEST_F(DeviceImages, StoresAreCreatedOnceIfThereIsRoom) {
    const std::string path = Image(ImageFamily::Kld, 16 * KIB);
    const std::string cannot = "0 unable to write to the file: store ";
    const std::string invalid = "0 invalid operation: store ";
    const struct {
        DeviceNvsTypes device;
        std::int32_t id;
        std::int32_t size;
        bool paired;
        std::string expected;
    } rows[] = {
        {DEVICE_TYPE_SMEM, 1, 500, true, "none"},
        {DEVICE_TYPE_SMEM, 1, 64, false, invalid + "smem 1 already exists"},
        {DEVICE_TYPE_SMEM, 2, 31, false,
         invalid + "smem 2: a size of 31 bytes is too small, at least N are needed"},
        {DEVICE_TYPE_SMEM, 2, 1100, false, cannot + "smem 2 takes 2200 bytes of its memory, 2096 are left"},
        {DEVICE_TYPE_SMEM, 2, -1, false,
         cannot + "smem 2 takes 8589934590 bytes of its memory, 2096 are left"},
        {DEVICE_TYPE_SMEM, 2, 1048, false, "none"},
        {DEVICE_TYPE_OTP, 0xFFFF, 1024, false, "none"},
        {DEVICE_TYPE_OTP, 1, 32, false, cannot + "otp 1 takes 32 bytes of its memory, 0 are left"},
        {DEVICE_TYPE_MTP, 7, 33, false, "none"},
    };
    const auto facade = Holding(At("smem", 1, "hci_trace_mask=5") + At("eeprom", 3, "max_acl_links=1"));
    for (const auto& row : rows) {
        KesTest::ClearErrors();
        const bool made = facade->CreateKeyStore(path, row.device, row.id, row.size, 12, row.paired);
        EXPECT_EQ(WithoutNeed(WithoutPath(LastError(), path)), row.expected);
        EXPECT_EQ(made, row.expected == "none");
    }
    ASSERT_TRUE(facade->SaveToDeviceOstrel(path, false)) << LastError();
    ASSERT_TRUE(facade->LoadFromDeviceOstrel(path, false)) << LastError();
    EXPECT_EQ(Stores(*facade), "15/3 3936 3906; 2/1 500 470p; 2/2 1048 1032; 1/65535 1024 1008; 4/7 33 17");
    const auto info = ReadImageInfo(path);
    std::uint32_t application = 0;
    for (const auto& store : info.stores) application += store.applicationId;
    EXPECT_EQ(application, 4U * 12U);
}

TEST_F(DeviceImages, AStoreManagerReadsTheDeviceEachTime) {
    namespace kes = VemoKesConfigTools;
    const std::string path = Image(ImageFamily::Kld, 16 * KIB);
    const std::unique_ptr<kes::IStoreManager> manager(
        kes::CReaderWriterFactory::Ref().CreateStoreManager("KLD770xDevice", path, nullptr));
    kes::CKesContext context;
    EXPECT_TRUE(manager->GetStoresInfo(context).empty());
    kes::CStoreInfo store(kes::IStoreManager::DEVICE_MTP, 3, 64, -1, 5, 0, false);
    manager->CreateStore(store, context);
    EXPECT_EQ(LastError(), "none");
    manager->RefreshStoreInfo(store, context);
    EXPECT_EQ(store.StoreSizeFree(), 48);
    ASSERT_EQ(manager->GetStoresInfo(context).size(), 1U);
    EXPECT_EQ(manager->GetStoresInfo(context).front()->LinkedStoreId(), 5);
    std::filesystem::remove(path);
    EXPECT_TRUE(manager->GetStoresInfo(context).empty());
    EXPECT_EQ(LastError(), "0 unable to open the file: " + path + ": No such file or directory");
}

TEST_F(DeviceImages, TheDocumentShowsARealImage) {
    const std::string path = mFolder / "device.img";
    ASSERT_TRUE(Holding("file=bt1\nmax_acl_links = 3\n")->SaveToDeviceKesEeprom(path, 9, 0)) << LastError();
    ASSERT_TRUE(Holding("file=bt1\nmax_acl_links = 4\n")->SaveToDeviceKesEeprom(path, 0, 0)) << LastError();
    const std::string bytes = KesTest::ReadFile(path);
    std::string rows;
    for (std::size_t at = 0; at < bytes.size(); at += 16) {
        const std::string row = bytes.substr(at, 16);
        if (row == std::string(16, '\0') || row == std::string(16, '\xFF')) continue;
        char text[24];
        std::snprintf(text, sizeof text, "%03zx ", at);
        rows += text;
        for (const char byte : row) {
            std::snprintf(text, sizeof text, " %02x", static_cast<unsigned char>(byte));
            rows += text;
        }
        rows += "\n";
    }
    std::string documented;
    std::istringstream document(
        KesTest::ReadFile(std::string(KES_TEST_SOURCE_DIR) + "/docs/device-image.md"));
    for (std::string line; std::getline(document, line);) {
        constexpr std::size_t ROW = 3 + 1 + 16 * 3;
        // An offset of three digits, two spaces, bytes.
        if (line.find_first_not_of("0123456789abcdef") == 3 && line.size() >= ROW &&
            line.substr(3, 2) == "  ")
            documented += line.substr(0, ROW) + "\n";
    }
    EXPECT_EQ(documented, rows);
}

TEST_F(DeviceImages, StoreSetsAreReadOneByOneAndReplacedOneByOne) {
    const std::string path = Image(ImageFamily::Isp, 16 * KIB);
    const std::string text = At("cur_cfg", 1, "max_acl_links=1") + At("cur_cfg", 2, "max_acl_links=2") +
                             At("fw_cfg", 1, "max_acl_links=3") + At("eeprom", 1, "max_acl_links=4") +
                             At("smem", 1, "max_acl_links=5");
    const std::string all = "1/13/1 4101=1; 1/13/2 4101=2; 1/14/1 4101=3; 1/15/1 4101=4; 1/2/1 4101=5";
    EXPECT_EQ(Saved(ImageFamily::Isp, path, text), all);
    const struct {
        std::int32_t filter;
        const char* keys;
        const char* defaults;
    } rows[] = {
        {DEVICE_TYPE_NONE, all.c_str(), "1/14/1 4101=3"},
        {DEVICE_TYPE_ALL, all.c_str(), "1/14/1 4101=3"},
        {DEVICE_TYPE_CUR_CFG, "1/13/1 4101=1; 1/13/2 4101=2", ""},
        {DEVICE_TYPE_FW_CFG, "1/14/1 4101=3", ""},
        {DEVICE_TYPE_DEV_CFG, "1/15/1 4101=4; 1/2/1 4101=5", "1/14/1 4101=3"},
        {DEVICE_TYPE_SMEM, "1/2/1 4101=5", ""},
        {DEVICE_TYPE_MTP, "", ""},
    };
    for (const auto& row : rows) {
        const auto facade = Blank();
        EXPECT_TRUE(facade->LoadFromDeviceKesCrs(path, static_cast<DeviceNvsTypes>(row.filter)))
            << LastError();
        EXPECT_EQ(Dump(*facade), row.keys) << row.filter;
        EXPECT_EQ(facade->HasDeviceDefaults(), *row.defaults != '\0') << row.filter;
    }

    EXPECT_EQ(Saved(ImageFamily::Isp, path, At("cur_cfg", 3, "max_acl_links=6")),
              "1/13/3 4101=6; 1/14/1 4101=3; 1/15/1 4101=4; 1/2/1 4101=5");
    EXPECT_EQ(Saved(ImageFamily::Isp, path, At("mtp", 1, "max_acl_links=7")),
              "1/13/3 4101=6; 1/4/1 4101=7; 1/14/1 4101=3");
    const auto facade = Blank();
    EXPECT_EQ(ReadImageInfo(path).resets, 0U);
    EXPECT_TRUE(facade->SaveToDeviceKesCrs(path, true));
    EXPECT_EQ(ReadImageInfo(path).resets, 1U);
}

TEST_F(DeviceImages, AnEepromIsCreatedOrFormattedOnlyIfMissingOrBlank) {
    const std::string path = mFolder / "chip";
    const std::string invalid = "0 invalid operation: ";
    const std::string good = "1/15/1 4101=1";
    constexpr std::size_t NO_FILE = 0;
    const struct {
        std::size_t size;  ///< of the existing file
        char byte;         ///< of its content
        std::int32_t exponent;
        std::string expected;
    } rows[] = {
        {NO_FILE, 0, 0, "0 unable to open the file: No such file or directory"},
        {NO_FILE, 0, 10, good},
        {NO_FILE, 0, 8,
         invalid + "an image of 256 bytes has 0 bytes left for the memory eeprom, N are needed"},
        {NO_FILE, 0, 27, invalid + "2^27 bytes are requested, an image has at most 2^26"},
        {1024, '\xFF', 10, good},
        {1024, '\0', 10, good},
        {1000, '\xFF', 0, good},
        {1000, '\xFF', -1, good},
        {1000, '\xFF', 10, invalid + "has 1000 bytes, 1024 are requested"},
        {1024, 'x', 10, invalid + "is neither blank nor a device image"},
        {1024, 'x', 0, invalid + "is neither blank nor a device image"},
    };
    const auto facade = Holding(At("eeprom", 1, "max_acl_links=1"));
    for (const auto& row : rows) {
        std::filesystem::remove(path);
        const std::string before(row.size, row.byte);
        if (row.size != NO_FILE) mFolder.Write("chip", before);
        const bool saved = facade->SaveToDeviceKesEeprom("file:" + path, row.exponent, 0x50);
        const std::string outcome =
            saved ? Read(ImageFamily::Eeprom, path) : WithoutNeed(WithoutPath(LastError(), "file:" + path));
        EXPECT_EQ(outcome, row.expected) << row.size << " " << row.exponent;
        if (saved) {
            EXPECT_EQ(ReadImageInfo(path).i2cMask, 0x50U);
            EXPECT_EQ(ReadImageInfo(path).chipId, CHIP_ID);
        } else {
            EXPECT_EQ(KesTest::ReadFile(path), before);
        }
    }
    ASSERT_TRUE(facade->SaveToDeviceKesEeprom(mFolder / "second", 10, 0x50));
    EXPECT_FALSE(facade->SaveToDeviceKesEeprom(mFolder / "second", 11, 0x50));
    EXPECT_EQ(WithoutPath(LastError(), mFolder / "second"), invalid + "has 1024 bytes, 2048 are requested");
    EXPECT_FALSE(facade->SaveToDeviceKesEeprom(mFolder / "second", 10, 0x51));
    EXPECT_EQ(WithoutPath(LastError(), mFolder / "second"), invalid + "has the I2C mask 80, 81 is requested");
}

TEST_F(DeviceImages, ImagesOfAnotherFamilyChipOrSystemAreRejected) {
    const std::string path = Image(ImageFamily::Kld, 16 * KIB);
    const std::string invalid = "0 invalid operation: ";
    EXPECT_EQ(WithoutPath(Read(ImageFamily::Isp, path), path),
              invalid + "is an image of the family kld, not isp");
    EXPECT_EQ(Saved(ImageFamily::Eeprom, path, At("eeprom", 1, "max_acl_links=1")),
              invalid + "is an image of the family kld, not eeprom");
    EXPECT_EQ(Read(ImageFamily::Kld, path), "") << "nothing was ever saved";
    EXPECT_EQ(SavedKld(path, At("eeprom", 1, "max_acl_links=1")), "1/15/1 4101=1");
    const auto other = Blank("ostrell_310_1_7");
    const std::string otherSystem =
        invalid + "is for system ostrell_520_2_3, the configuration is for ostrell_310_1_7";
    EXPECT_FALSE(Load(*other, ImageFamily::Kld, path));
    EXPECT_EQ(WithoutPath(LastError(), path), otherSystem);
    EXPECT_FALSE(other->SaveToDeviceOstrel(path, true));
    EXPECT_EQ(WithoutPath(LastError(), path), otherSystem);
    EXPECT_TRUE(other->SaveToDeviceOstrel(path, false)) << "nothing of the other system is left";

    ImageGeometry geometry;
    geometry.chipId = CHIP_ID;
    geometry.size = KIB;
    EXPECT_EQ(Made(geometry), "made");
    EXPECT_FALSE(Save(*other, ImageFamily::Eeprom, mFolder / "made.img"));
    EXPECT_EQ(WithoutPath(LastError(), mFolder / "made.img"),
              invalid + "is for chip 76, but ostrell_310_1_7 has chip 61");
    EXPECT_EQ(WithoutPath(Read(ImageFamily::Kld, path + "?fast"), path + "?fast"),
              invalid + "unknown option \"fast\" after \"?\": device images have none");
}

TEST_F(DeviceImages, AreCreatedWithMemoriesOfTheirFamilyAndReplaceNothingElse) {
    const std::string invalid = "invalid operation: C: ";
    const struct {
        ImageGeometry geometry;
        bool force;
        std::string expected;
    } rows[] = {
        {{ImageFamily::Kld, 0, "", 100, 0, {}},
         false,
         invalid + "an image of 100 bytes has 0 bytes left for the memory otp, N are needed"},
        {{ImageFamily::Eeprom, 0, "", 1U << 27U, 0, {}},
         false,
         invalid + "an image has at most 67108864 bytes, 134217728 are requested"},
        {{ImageFamily::Isp, 0, "", 4096, 0, {{13, 512}, {14, 512}}},
         false,
         invalid + "the size of the memory dev_cfg is missing"},
        {{ImageFamily::Isp, 0, "", 4096, 0, {{13, 512}, {1, 512}}},
         false,
         invalid + "the family isp does not have the memory otp"},
        {{ImageFamily::Isp, 0, "", 4096, 0, {{13, 512}, {13, 512}}},
         false,
         invalid + "the memory cur_cfg is given twice"},
        {{ImageFamily::Isp, 0, "", 4096, 0, {{13, 512}, {14, 512}, {15, 4000}}},
         false,
         invalid + "an image of 4096 bytes has 2576 bytes left for the memory dev_cfg, N are needed"},
        {{ImageFamily::Isp, 0, "", 4096, 0, {{13, 512}, {14, 500}, {15, 512}}}, false, "made"},
        {{ImageFamily::Kld, 0, "", 4096, 0, {}}, false, invalid + "a device image already exists"},
        {{ImageFamily::Kld, 0, "", 4096, 0, {}}, true, "made"},
        {{ImageFamily::Eeprom, 0, std::string(300, 'x'), 8192, 0, {}}, true, "made"},
    };
    for (const auto& row : rows) EXPECT_EQ(WithoutNeed(Made(row.geometry, row.force)), row.expected);
    EXPECT_EQ(VemoKesConfigTools::SystemOfImage(mFolder / "made.img"), std::string(300, 'x'));
    mFolder.Write("made.img", "text");
    EXPECT_EQ(Made({}),
              invalid + "an image of 0 bytes has 0 bytes left for the memory eeprom, 64 are needed");
    EXPECT_EQ(Made({ImageFamily::Eeprom, 0, "", 4096, 0, {}}),
              invalid + "a file already exists that is neither blank nor a device image");
    EXPECT_EQ(VemoKesConfigTools::SystemOfImage(mFolder / "made.img"), std::nullopt);
}

}  // namespace
