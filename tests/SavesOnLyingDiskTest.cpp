// Every save of the library on a disk that loses power, loses what was not synced, fails and fills up: it
// always leaves the complete old content or the complete new one. Texts, databases and JSON files are all
// replaced by one operation, tested here with texts.
//
// KES_TEST_SEED seeds the random choices. KES_TEST_SECONDS sets how long random saves are tried, 2 by
// default. With KES_TEST_WHOLE every pair of two successive power cuts is tried instead of a sample.

#include "files/Files.h"
#include "files/ReplaceFile.h"
#include "plugins/image/ImageFormat.h"
#include "support/DeviceSession.h"
#include "support/LyingDisk.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>

using namespace KesTest;

namespace {

/// The contents, as text, before a save, after it, and after the next one.
struct Texts {
    std::string before;
    std::string after;
    std::string other;
};

const Texts TEXTS = {
    "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 3\n"
    "subsystem=wlan\ndevice=eeprom\nstore=2\nantenna_gain = 2\n",
    "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 4\n"
    "subsystem=app\ndevice=eeprom\nstore=3\nled_brightness = 50\n",
    "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 5\n"};

/// For one-time-programmable memory each content has all bits of the previous one.
const Texts OTP_TEXTS = {"subsystem=bt\ndevice=otp\nstore=1\nmax_acl_links = 1\n",
                         "subsystem=bt\ndevice=otp\nstore=1\nmax_acl_links = 3\n",
                         "subsystem=bt\ndevice=otp\nstore=1\nmax_acl_links = 7\n"};

/// One kind of save.
struct SaveCase {
    std::string name;
    std::function<void(LyingDisk&, const std::string&)> prepare;  ///< puts the first content on the disk
    std::function<bool(const std::string&)> save;                 ///< saves another content over it
    std::function<std::string()> read;                            ///< the content found
    std::function<bool(const LyingDisk::Tree&)> isClean;          ///< whether no temporary file is left
    Texts texts = TEXTS;
    /// Interrupted saves may use up the memory.
    bool mayLackRoom = false;
};

unsigned Setting(const char* name, unsigned without) {
    const char* const value = std::getenv(name);
    return value == nullptr ? without : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

class SavesOnLyingDisk : public DeviceSession {
protected:
    SavesOnLyingDisk() : mRandom(Setting("KES_TEST_SEED", 1)) {}

    static std::unique_ptr<host::FrameworkFacade> With(const std::string& text) {
        auto facade = Blank();
        EXPECT_TRUE(text.empty() || facade->LoadTextFromMemory(text, false)) << LastError() << text;
        return facade;
    }

    static SaveCase TextFile() {
        const std::string path = "/d/board.ktf";
        return {"text", [=](LyingDisk& disk, const std::string& text) { disk.Put(path, text); },
                [=](const std::string& text) {
                    try {
                        files::ReplaceFile(path, text);
                        return true;
                    } catch (const files::FileError&) {
                        return false;
                    }
                },
                [=] {
                    try {
                        return files::ReadFile(path, files::Readable::REGULAR_FILES).bytes;
                    } catch (const files::FileError& error) {
                        return std::string(error.what());
                    }
                },
                [=](const LyingDisk::Tree& tree) { return tree.size() <= 2; }};
    }

    /// The keys of a dump, sorted: places in a folder are in file system order.
    static std::string Sorted(const std::string& dump) {
        std::set<std::string> keys;
        std::istringstream in(dump + "; ");
        for (std::string key; std::getline(in, key, ';'); in.get()) keys.insert(key);
        std::string sorted;
        for (const std::string& key : keys) sorted += key + "; ";
        return sorted;
    }

    SaveCase Chunks() {
        const std::string path = "/d/chunks";
        return {"chunks",
                [=](LyingDisk& disk, const std::string& text) {
                    const files::DiskInUse use(disk);
                    EXPECT_TRUE(With(text)->SaveBinary(path)) << LastError();
                },
                [=](const std::string& text) { return With(text)->SaveBinary(path); },
                [=, this] {
                    mpReader = Blank();
                    try {
                        return mpReader->LoadBinary(path, false) ? Sorted(Dump(*mpReader)) : LastError();
                    } catch (const std::exception& error) {
                        return std::string(error.what());
                    }
                },
                [](const LyingDisk::Tree& tree) {
                    return std::ranges::all_of(tree, [](const auto& file) {
                        return file.first.ends_with(".kcf") || file.first.ends_with('/');
                    });
                }};
    }

    SaveCase Device(ImageFamily family, const char* name, std::uint32_t size) {
        const std::string path = "/d/device.img";
        return {name,
                [=](LyingDisk& disk, const std::string& text) {
                    const files::DiskInUse use(disk);
                    ImageGeometry geometry;
                    geometry.family = family;
                    geometry.size = size;
                    VemoKesConfigTools::CreateImage(path, geometry, /*force=*/true);
                    OnlySetOtp(disk, path);
                    EXPECT_TRUE(DeviceSession::Save(*With(text), family, path)) << LastError();
                },
                [=](const std::string& text) { return DeviceSession::Save(*With(text), family, path); },
                [=, this] { return Read(family, path); },
                [](const LyingDisk::Tree& tree) { return tree.size() == 2; }};
    }

    /// Marks the one-time-programmable memory of the image, if it has any, as such on the disk.
    static void OnlySetOtp(LyingDisk& disk, const std::string& path) {
        const std::string& bytes = disk.Content(path);
        const VemoKesConfigTools::ImageHeader header = VemoKesConfigTools::DecodeHeader(bytes, bytes.size());
        for (const VemoKesConfigTools::ImageMemory& memory : header.memories) {
            if (memory.oneTimeProgrammable)
                disk.OnlySetsBits(path, memory.offset, memory.offset + memory.size);
        }
    }

    SaveCase Otp() {
        SaveCase save = Device(ImageFamily::Kld, "otp", 4096);
        save.texts = OTP_TEXTS;
        save.mayLackRoom = true;
        return save;
    }

    std::vector<SaveCase> AllSaves() {
        return {TextFile(),
                Chunks(),
                Device(ImageFamily::Eeprom, "eeprom", 2048),
                Device(ImageFamily::Isp, "isp", 4096),
                Device(ImageFamily::Kld, "kld", 4096),
                Otp()};
    }

    /// The result of reading a content that was saved without faults.
    static std::string Undisturbed(const SaveCase& save, const std::string& text) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        const files::DiskInUse use(disk);
        EXPECT_TRUE(save.save(text)) << save.name << ": " << LastError();
        return save.read();
    }

    /// The results of reading the three contents.
    static Texts Readings(const SaveCase& save) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        const files::DiskInUse use(disk);
        return {save.read(), Undisturbed(save, save.texts.after), Undisturbed(save, save.texts.other)};
    }

    /// Checks the disk after a fault during a save: reading gives old or new content, and the same when
    /// repeated, and the next save succeeds and leaves no temporary files.
    static void ExpectOldOrNew(const SaveCase& save, LyingDisk& disk, const Texts& readings, bool mustBeNew) {
        const files::DiskInUse use(disk);
        const std::string found = save.read();
        if (mustBeNew) {
            EXPECT_EQ(found, readings.after) << save.name;
        } else {
            EXPECT_TRUE(found == readings.before || found == readings.after) << save.name << ": " << found;
        }
        EXPECT_EQ(save.read(), found) << save.name << ", read again";
        const bool saved = save.save(save.texts.other);
        if (!saved && save.mayLackRoom && LastError().find(" are left") != std::string::npos) {
            EXPECT_EQ(save.read(), found) << save.name << ", refused";
        } else {
            EXPECT_TRUE(saved) << save.name << ": " << LastError();
            EXPECT_EQ(save.read(), readings.other) << save.name << ", saved again";
        }
        EXPECT_TRUE(save.isClean(disk.Files())) << save.name << ": " << Names(disk);
    }

    /// The number of calls of the disk in a save without faults.
    static std::size_t CallsOf(const SaveCase& save) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        const files::DiskInUse use(disk);
        disk.ResetCalls();
        EXPECT_TRUE(save.save(save.texts.after)) << save.name;
        return disk.Calls();
    }

    /// Cuts the power at each moment of the save; checks one of `share` resulting states on average.
    void CutEverywhere(const SaveCase& save, const Texts& readings, unsigned share) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        disk.BeginLog();
        {
            const files::DiskInUse use(disk);
            ASSERT_TRUE(save.save(save.texts.after)) << save.name << ": " << LastError();
        }
        std::size_t states = 0;
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            ++states;
            if (mRandom() % share == 0) ExpectOldOrNew(save, state, readings, /*mustBeNew=*/false);
        });
        EXPECT_GT(states, 3U) << save.name;
    }

    /// Cuts the power in the save and then in the next one; checks one of `first` and `second` states on
    /// average.
    void CutTwice(const SaveCase& save, const Texts& readings, unsigned first, unsigned second) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        disk.BeginLog();
        {
            const files::DiskInUse use(disk);
            ASSERT_TRUE(save.save(save.texts.after)) << LastError();
        }
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            if (mRandom() % first != 0) return;
            const files::DiskInUse use(state);
            const std::string before = save.read();
            if (!save.save(save.texts.other)) {
                EXPECT_TRUE(save.mayLackRoom) << save.name << ": " << LastError();
                return;
            }
            state.ForEachCut(mRandom, [&](LyingDisk& again) {
                if (mRandom() % second == 0)
                    ExpectOldOrNew(save, again, {before, readings.other, readings.other}, false);
            });
        });
    }

    /// Fails one call of the save, and all later ones if `forEver`.
    static void FailOne(const SaveCase& save, const Texts& readings, std::size_t call, bool forEver) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        bool saved = false;
        {
            const files::DiskInUse use(disk);
            disk.FailAt(call, EIO, forEver);
            saved = save.save(save.texts.after);
            disk.FailAt(0, 0, false);
        }
        SCOPED_TRACE(save.name + ", call " + std::to_string(call) + (forEver ? " and on" : ""));
        ExpectOldOrNew(save, disk, readings, saved);
    }

    /// A random content with some keys.
    std::string RandomText() {
        const auto number = [&](unsigned below) { return static_cast<int>(mRandom() % below); };
        const std::string place = "\ndevice=eeprom\nstore=" + std::to_string(1 + number(3)) + "\n";
        std::string text = "subsystem=bt" + place + "max_acl_links = " + std::to_string(1 + number(7)) + "\n";
        if (number(2) != 0)
            text += "subsystem=wlan" + place + "antenna_gain = " + std::to_string(number(40)) + "\n";
        if (number(2) != 0) {
            text += "subsystem=curator" + place + "board_name = \"";
            text.append(static_cast<std::size_t>(number(32)), static_cast<char>('a' + number(26)))
                .append("\"\n");
        }
        return text;
    }

    static std::string Names(const LyingDisk& disk) {
        std::string names;
        for (const auto& [name, content] : disk.Files()) names += name + " ";
        return names;
    }

    std::mt19937 mRandom;
    std::unique_ptr<host::FrameworkFacade> mpReader;
};

TEST_F(SavesOnLyingDisk, AreCompleteAfterAPowerCutAnywhere) {
    for (const SaveCase& save : AllSaves()) CutEverywhere(save, Readings(save), 1);
}

TEST_F(SavesOnLyingDisk, AreCompleteAfterASecondPowerCutDuringRecovery) {
    const bool whole = Setting("KES_TEST_WHOLE", 0) != 0;
    for (const SaveCase& save : {Chunks(), Device(ImageFamily::Eeprom, "eeprom", 1024)})
        CutTwice(save, Readings(save), whole ? 1 : 7, whole ? 1 : 5);
}

TEST_F(SavesOnLyingDisk, AreCompleteWhenAnyCallFails) {
    for (const SaveCase& save : AllSaves()) {
        const Texts readings = Readings(save);
        const std::size_t calls = CallsOf(save);
        EXPECT_GT(calls, 5U) << save.name;
        for (std::size_t call = 1; call <= calls; ++call) {
            FailOne(save, readings, call, false);
            FailOne(save, readings, call, true);
        }
    }
}

TEST_F(SavesOnLyingDisk, AreCompleteForAnyContent) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(Setting("KES_TEST_SECONDS", 2));
    std::size_t rounds = 0;
    while (!HasFailure() && (rounds == 0 || std::chrono::steady_clock::now() < end)) {
        std::vector<SaveCase> all = AllSaves();
        SaveCase& save = all[mRandom() % all.size()];
        if (!save.mayLackRoom) save.texts = {RandomText(), RandomText(), RandomText()};
        SCOPED_TRACE("round " + std::to_string(rounds++) + ": " + save.texts.before + "--\n" +
                     save.texts.after + "--\n" + save.texts.other);
        const Texts readings = Readings(save);
        switch (mRandom() % 3) {
            case 0:
                if (readings.before != readings.after) CutEverywhere(save, readings, 3);
                break;
            case 1:
                CutTwice(save, readings, 20, 20);
                break;
            default:
                FailOne(save, readings, 1 + mRandom() % CallsOf(save), mRandom() % 2 != 0);
        }
    }
    RecordProperty("rounds", static_cast<int>(rounds));
}

TEST_F(SavesOnLyingDisk, HandleShortAndInterruptedCalls) {
    for (const SaveCase& save : AllSaves()) {
        LyingDisk disk;
        save.prepare(disk, save.texts.before);
        const files::DiskInUse use(disk);
        disk.BeSlow(7);
        EXPECT_TRUE(save.save(save.texts.after)) << save.name << ": " << LastError();
        EXPECT_EQ(save.read(), Undisturbed(save, save.texts.after)) << save.name;
    }
}

TEST_F(SavesOnLyingDisk, LeaveTheOldContentOnAFullDisk) {
    for (const SaveCase& save : {TextFile(), Chunks()}) {
        const Texts readings = Readings(save);
        for (const std::uint64_t room : {0U, 1U, 50U, 100U, 150U}) {
            LyingDisk disk;
            save.prepare(disk, save.texts.before);
            {
                const files::DiskInUse use(disk);
                disk.Room(room);
                EXPECT_FALSE(
                    save.save(save.texts.after + std::string(200, '\n') + "# " + std::string(200, 'x')))
                    << save.name << room;
                EXPECT_EQ(save.read(), readings.before) << save.name;
                EXPECT_TRUE(save.isClean(disk.Files())) << Names(disk);
                disk.Room(1U << 20U);
            }
            ExpectOldOrNew(save, disk, readings, false);
        }
    }
}

TEST_F(SavesOnLyingDisk, ARecreatedImageIsTheOldOneOrTheNewOne) {
    const std::string path = "/d/device.img";
    const auto make = [&](std::uint16_t chip) {
        ImageGeometry geometry;
        geometry.chipId = chip;
        geometry.size = 1024;
        VemoKesConfigTools::CreateImage(path, geometry, /*force=*/true);
    };
    LyingDisk disk;
    {
        const files::DiskInUse use(disk);
        make(1);
        disk.BeginLog();
        make(2);
    }
    std::set<int> seen;
    disk.ForEachCut(mRandom, [&](LyingDisk& state) {
        const files::DiskInUse use(state);
        seen.insert(VemoKesConfigTools::ReadImageInfo(path).chipId);
        make(3);
        EXPECT_EQ(VemoKesConfigTools::ReadImageInfo(path).chipId, 3);
        EXPECT_EQ(state.Files().size(), 2U) << Names(state);
    });
    EXPECT_EQ(seen, (std::set<int>{1, 2}));
}

TEST_F(SavesOnLyingDisk, ANewStoreIsCompleteOrAbsent) {
    const SaveCase image = Device(ImageFamily::Kld, "kld", 4096);
    const auto make = [](std::int32_t store) {
        return Blank()->CreateKeyStore("/d/device.img", host::DEVICE_TYPE_SMEM, store, 64, 0, false);
    };
    const auto stores = [] { return VemoKesConfigTools::ReadImageInfo("/d/device.img").stores.size(); };
    LyingDisk disk;
    image.prepare(disk, image.texts.before);
    disk.BeginLog();
    std::size_t before = 0;
    std::string content;
    {
        const files::DiskInUse use(disk);
        before = stores();
        content = image.read();
        ASSERT_TRUE(make(4)) << LastError();
    }
    std::set<std::size_t> seen;
    disk.ForEachCut(mRandom, [&](LyingDisk& state) {
        const files::DiskInUse use(state);
        seen.insert(stores() - before);
        EXPECT_EQ(image.read(), content);
        const std::size_t now = stores();
        EXPECT_TRUE(make(5)) << LastError();
        EXPECT_EQ(stores(), now + 1);
    });
    EXPECT_EQ(seen, (std::set<std::size_t>{0, 1}));
}

TEST_F(SavesOnLyingDisk, OfNewFilesAreCompleteOrAbsent) {
    for (SaveCase save : {TextFile(), Chunks()}) {
        const Texts readings = Readings(save);
        LyingDisk disk;
        std::string nothing;
        {
            const files::DiskInUse use(disk);
            nothing = save.read();
            disk.BeginLog();
            ASSERT_TRUE(save.save(save.texts.after)) << LastError();
        }
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            const files::DiskInUse use(state);
            const std::string found = save.read();
            // An empty folder has no configuration either.
            EXPECT_TRUE(found == readings.after || found == nothing ||
                        found.find("No config data") != std::string::npos)
                << save.name << ": " << found;
            EXPECT_TRUE(save.save(save.texts.other)) << LastError();
            EXPECT_EQ(save.read(), readings.other) << save.name;
            EXPECT_TRUE(save.isClean(state.Files())) << Names(state);
        });
    }
}

}  // namespace
