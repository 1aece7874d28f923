// Every save of the library on a disk that loses power, forgets what was not synced, fails and fills up: what
// is found afterwards is the whole old content or the whole new one.

#include "files/Files.h"
#include "files/ReplaceFile.h"
#include "support/DeviceSession.h"
#include "support/LyingDisk.h"

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>

using namespace KesTest;

namespace {

constexpr const char* OLD_KEYS =
    "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 3\n"
    "subsystem=wlan\ndevice=eeprom\nstore=2\nantenna_gain = 2\n";
constexpr const char* NEW_KEYS =
    "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 4\n"
    "subsystem=app\ndevice=eeprom\nstore=3\nled_brightness = 50\n";
constexpr const char* OTHER_KEYS = "subsystem=bt\ndevice=eeprom\nstore=1\nmax_acl_links = 5\n";

/// One kind of save.
struct SaveCase {
    std::string name;
    std::string path;                                     ///< where it goes
    std::function<void(LyingDisk&)> prepare;              ///< puts the old content there
    std::function<bool(const std::string&)> save;         ///< saves a content
    std::function<std::string()> read;                    ///< what is there
    std::function<bool(const LyingDisk::Tree&)> isClean;  ///< no file is left that is not ours
};

class SavesOnLyingDisk : public DeviceSession {
protected:
    SavesOnLyingDisk() : mRandom(Seed()) { RecordProperty("seed", static_cast<int>(Seed())); }

    static unsigned Seed() {
        const char* const seed = std::getenv("KES_TEST_SEED");
        return seed == nullptr ? 1U : static_cast<unsigned>(std::strtoul(seed, nullptr, 10));
    }

    static std::unique_ptr<host::FrameworkFacade> With(const std::string& text) {
        auto facade = Blank();
        EXPECT_TRUE(text.empty() || facade->LoadTextFromMemory(text, false)) << LastError() << text;
        return facade;
    }

    static SaveCase TextFile() {
        const std::string path = "/d/board.ktf";
        return {"text",
                path,
                [=](LyingDisk& disk) { disk.Put(path, OLD_KEYS); },
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

    /// The keys of a dump in their order: that of places in a folder is the file system's.
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
                path,
                [=](LyingDisk& disk) {
                    const files::DiskInUse use(disk);
                    EXPECT_TRUE(With(OLD_KEYS)->SaveBinary(path)) << LastError();
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
                path,
                [=, this](LyingDisk& disk) {
                    const files::DiskInUse use(disk);
                    ImageGeometry geometry;
                    geometry.family = family;
                    geometry.size = size;
                    VemoKesConfigTools::CreateImage(path, geometry, /*force=*/true);
                    EXPECT_TRUE(DeviceSession::Save(*With(OLD_KEYS), family, path)) << LastError();
                },
                [=](const std::string& text) { return DeviceSession::Save(*With(text), family, path); },
                [=, this] { return Read(family, path); },
                [](const LyingDisk::Tree& tree) { return tree.size() == 2; }};
    }

    std::vector<SaveCase> AllSaves() {
        return {TextFile(), Chunks(), Device(ImageFamily::Eeprom, "eeprom", 2048),
                Device(ImageFamily::Isp, "isp", 4096), Device(ImageFamily::Kld, "kld", 4096)};
    }

    /// What reading gives for a content that was saved undisturbed.
    static std::string Undisturbed(const SaveCase& save, const char* text) {
        LyingDisk disk;
        save.prepare(disk);
        const files::DiskInUse use(disk);
        EXPECT_TRUE(save.save(text)) << save.name << ": " << LastError();
        return save.read();
    }

    /// Holds for the disk after anything has happened to a save: old or new, twice the same, and the next
    /// save works and leaves nothing behind.
    static void ExpectOldOrNew(const SaveCase& save, LyingDisk& disk, const std::string& before,
                               const std::string& after, const std::string& other, bool mustBeNew) {
        const files::DiskInUse use(disk);
        const std::string found = save.read();
        if (mustBeNew) {
            EXPECT_EQ(found, after) << save.name;
        } else {
            EXPECT_TRUE(found == before || found == after) << save.name << ": " << found;
        }
        EXPECT_EQ(save.read(), found) << save.name << ", read again";
        EXPECT_TRUE(save.save(OTHER_KEYS)) << save.name << ": " << LastError();
        EXPECT_EQ(save.read(), other) << save.name << ", saved again";
        EXPECT_TRUE(save.isClean(disk.Files())) << save.name << ": " << Names(disk);
    }

    /// How many calls of the disk an undisturbed save takes.
    static std::size_t CallsOf(const SaveCase& save) {
        LyingDisk disk;
        save.prepare(disk);
        const files::DiskInUse use(disk);
        disk.ResetCalls();
        EXPECT_TRUE(save.save(NEW_KEYS)) << save.name;
        return disk.Calls();
    }

    static std::string Names(const LyingDisk& disk) {
        std::string names;
        for (const auto& [name, content] : disk.Files()) names += name + " ";
        return names;
    }

    std::mt19937 mRandom;
    std::unique_ptr<host::FrameworkFacade> mpReader;
};

TEST_F(SavesOnLyingDisk, AreWholeAfterACutAnywhere) {
    for (const SaveCase& save : AllSaves()) {
        const std::string after = Undisturbed(save, NEW_KEYS);
        const std::string other = Undisturbed(save, OTHER_KEYS);
        LyingDisk disk;
        save.prepare(disk);
        disk.BeginLog();
        std::string before;
        {
            const files::DiskInUse use(disk);
            before = save.read();
            ASSERT_NE(before, after);
            ASSERT_TRUE(save.save(NEW_KEYS)) << LastError();
        }
        std::size_t states = 0;
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            ++states;
            ExpectOldOrNew(save, state, before, after, other, /*mustBeNew=*/false);
        });
        EXPECT_GT(states, 3U) << save.name;
        RecordProperty(save.name + "-states", static_cast<int>(states));
    }
}

TEST_F(SavesOnLyingDisk, AreWholeAfterASecondCutWhileTheFirstIsPutRight) {
    for (const SaveCase& save : {Chunks(), Device(ImageFamily::Eeprom, "eeprom", 1024)}) {
        const std::string after = Undisturbed(save, NEW_KEYS);
        const std::string other = Undisturbed(save, OTHER_KEYS);
        LyingDisk disk;
        save.prepare(disk);
        disk.BeginLog();
        {
            const files::DiskInUse use(disk);
            ASSERT_TRUE(save.save(NEW_KEYS)) << LastError();
        }
        std::size_t number = 0;
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            // A sample: the whole takes the square of the time.
            if (number++ % 7 != 0) return;
            const files::DiskInUse use(state);
            const std::string before = save.read();
            ASSERT_TRUE(save.save(OTHER_KEYS)) << save.name << ": " << LastError();
            std::size_t inner = 0;
            state.ForEachCut(mRandom, [&](LyingDisk& second) {
                if (inner++ % 5 == 0) ExpectOldOrNew(save, second, before, other, other, /*mustBeNew=*/false);
            });
        });
        EXPECT_GT(number, 7U);
    }
}

TEST_F(SavesOnLyingDisk, AreWholeWhenAnyCallFails) {
    for (const SaveCase& save : AllSaves()) {
        const std::string after = Undisturbed(save, NEW_KEYS);
        const std::string other = Undisturbed(save, OTHER_KEYS);
        for (const bool forEver : {false, true}) {
            const std::size_t calls = CallsOf(save);
            EXPECT_GT(calls, 5U) << save.name;
            for (std::size_t call = 1; call <= calls; ++call) {
                LyingDisk disk;
                save.prepare(disk);
                std::string before;
                bool saved = false;
                {
                    const files::DiskInUse use(disk);
                    before = save.read();
                    disk.FailAt(call, EIO, forEver);
                    saved = save.save(NEW_KEYS);
                    disk.FailAt(0, 0, false);
                }
                SCOPED_TRACE(save.name + ", call " + std::to_string(call) + (forEver ? " and on" : ""));
                ExpectOldOrNew(save, disk, before, after, other, saved);
            }
        }
    }
}

TEST_F(SavesOnLyingDisk, GetByWithShortAndInterruptedCalls) {
    for (const SaveCase& save : AllSaves()) {
        const std::string after = Undisturbed(save, NEW_KEYS);
        LyingDisk disk;
        save.prepare(disk);
        const files::DiskInUse use(disk);
        disk.BeSlow(7);
        EXPECT_TRUE(save.save(NEW_KEYS)) << save.name << ": " << LastError();
        EXPECT_EQ(save.read(), after) << save.name;
    }
}

TEST_F(SavesOnLyingDisk, LeaveTheOldContentOnAFullDisk) {
    for (const SaveCase& save : {TextFile(), Chunks()}) {
        const std::string after = Undisturbed(save, NEW_KEYS);
        const std::string other = Undisturbed(save, OTHER_KEYS);
        for (const std::uint64_t room : {0U, 1U, 50U, 100U, 150U}) {
            LyingDisk disk;
            save.prepare(disk);
            std::string before;
            {
                const files::DiskInUse use(disk);
                before = save.read();
                disk.Room(room);
                EXPECT_FALSE(save.save(NEW_KEYS + std::string(200, '\n') + "# " + std::string(200, 'x')))
                    << save.name << room;
                EXPECT_EQ(save.read(), before) << save.name;
                EXPECT_TRUE(save.isClean(disk.Files())) << Names(disk);
                disk.Room(1U << 20U);
            }
            ExpectOldOrNew(save, disk, before, after, other, false);
        }
    }
}

TEST_F(SavesOnLyingDisk, AnImageThatIsMadeAnewIsTheOldOneOrTheNewOne) {
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

TEST_F(SavesOnLyingDisk, AppearWholeWhereNothingWas) {
    for (SaveCase save : {TextFile(), Chunks()}) {
        save.prepare = [](LyingDisk&) {};
        const std::string after = Undisturbed(save, NEW_KEYS);
        const std::string other = Undisturbed(save, OTHER_KEYS);
        LyingDisk disk;
        std::string before;
        {
            const files::DiskInUse use(disk);
            before = save.read();
            disk.BeginLog();
            ASSERT_TRUE(save.save(NEW_KEYS)) << LastError();
        }
        disk.ForEachCut(mRandom, [&](LyingDisk& state) {
            const files::DiskInUse use(state);
            const std::string found = save.read();
            // An empty folder has no configuration either.
            EXPECT_TRUE(found == after || found == before ||
                        found.find("No config data") != std::string::npos)
                << save.name << ": " << found;
            EXPECT_TRUE(save.save(OTHER_KEYS)) << LastError();
            EXPECT_EQ(save.read(), other) << save.name;
            EXPECT_TRUE(save.isClean(state.Files())) << Names(state);
        });
    }
}

}  // namespace
