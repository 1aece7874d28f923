// Faults of devices: failing and interrupted writes, flipped bits, truncation, and forged images. The program
// replaces the system calls on the image file, and operator new, to observe those of the plug-ins and make
// them fail.

#include "model/Words.h"
#include "plugins/binary/Bytes.h"
#include "support/DeviceSession.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::ImageFamily;
using KesTest::ImageGeometry;
using KesTest::LastError;
using VemoKesConfigTools::Crc32;

namespace {

/// One write to a file, or a sync, which has no bytes.
struct Step {
    std::size_t offset = 0;
    std::string bytes;
    bool IsSync() const { return bytes.empty(); }
};

/// How calls that change a file behave.
struct Calls {
    bool watching = false;
    int failing = -1;  ///< the number of the call that fails
    int error = EIO;
    int count = 0;
    std::vector<Step> steps;

    bool Fails() {
        if (!watching || count++ != failing) return false;
        errno = error;
        return true;
    }
};
Calls calls;
std::size_t largestAllocation = 0;

template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ssize_t pwrite(int file, const void* bytes, size_t size,
                                                      off_t offset) {
    if (calls.Fails()) return -1;
    if (calls.watching) {
        calls.steps.push_back(
            {static_cast<std::size_t>(offset), std::string(static_cast<const char*>(bytes), size)});
    }
    return Real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, size, offset);
}

__attribute__((visibility("default"))) ssize_t write(int file, const void* bytes, size_t size) {
    if (calls.Fails()) return -1;
    return Real<ssize_t(int, const void*, size_t)>("write")(file, bytes, size);
}

__attribute__((visibility("default"))) int fsync(int file) {
    if (calls.Fails()) return -1;
    if (calls.watching) calls.steps.push_back({});
    return Real<int(int)>("fsync")(file);
}

__attribute__((visibility("default"))) int rename(const char* from, const char* to) {
    if (calls.Fails()) return -1;
    return Real<int(const char*, const char*)>("rename")(from, to);
}
}

// Not inlined: otherwise the compiler warns about mixing two allocators.
__attribute__((noinline)) void* operator new(std::size_t size) {
    largestAllocation = std::max(largestAllocation, size);
    void* memory = std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
__attribute__((noinline)) void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    largestAllocation = std::max(largestAllocation, size);
    return std::malloc(size);
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace {

constexpr std::uint32_t EEPROM_SIZE = 512;
constexpr std::uint32_t KLD_SIZE = 4096;

std::string Keys(const std::string& device, const std::string& keys) {
    return "subsystem=bt\ndevice=" + device + "\nstore=1\n" + keys + "\n";
}

class DeviceImageFaults : public KesTest::DeviceSession {
protected:
    struct Case {
        const char* name;
        ImageFamily family;
        std::uint32_t size;
        std::string first;
        std::string second;
        std::string third;  ///< may be saved over the first one
    };
    std::vector<Case> Cases() const {
        return {{"eeprom", ImageFamily::Eeprom, EEPROM_SIZE, Keys("eeprom", "max_acl_links=1"),
                 Keys("eeprom", "max_acl_links=2\nhci_trace_mask=7"), Keys("eeprom", "max_acl_links=3")},
                {"kld", ImageFamily::Kld, KLD_SIZE,
                 Keys("otp", "hci_trace_mask=1") + Keys("smem", "max_acl_links=1") +
                     Keys("eeprom", "max_acl_links=1"),
                 Keys("otp", "hci_trace_mask=3") + Keys("smem", "max_acl_links=2") +
                     Keys("mtp", "max_acl_links=2"),
                 Keys("otp", "hci_trace_mask=5") + Keys("smem", "max_acl_links=3")}};
    }
    /// A device that holds the first text.
    std::string Prepared(const Case& which) {
        const std::string path = Image(which.family, which.size);
        if (which.family == ImageFamily::Kld) {
            EXPECT_TRUE(Blank()->CreateKeyStore(path, DEVICE_TYPE_SMEM, 1, 128, 0, /*paired=*/true))
                << LastError();
        }
        EXPECT_TRUE(Save(*Holding(which.first), which.family, path)) << LastError();
        return path;
    }
    static bool WatchedSave(FrameworkFacade& facade, ImageFamily family, const std::string& path, int failing,
                            int error) {
        calls = {true, failing, error, 0, {}};
        const bool good = Save(facade, family, path);
        calls.watching = false;
        return good;
    }
    std::string ReadBytes(ImageFamily family, const std::string& bytes) { return Read(family, Copy(bytes)); }
    /// A file with these bytes. It is overwritten in place each time, which is faster than creating a new
    /// one.
    std::string Copy(const std::string& bytes) {
        std::string path = mFolder / "copy.img";
        if (!std::filesystem::exists(path)) return mFolder.Write("copy.img", bytes);
        std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << bytes;
        std::filesystem::resize_file(path, bytes.size());
        return path;
    }
};

std::string Applied(std::string bytes, const Step& step, std::size_t size) {
    return bytes.replace(step.offset, size, step.bytes, 0, size);
}

TEST_F(DeviceImageFaults, ASaveOnAFailingDeviceIsAnErrorAndLeavesOldOrNew) {
    for (const Case& which : Cases()) {
        const std::string before = KesTest::ReadFile(Prepared(which));
        const auto facade = Holding(which.second);
        const std::string path = mFolder / "device.img";
        const std::string oldKeys = Read(which.family, path);
        ASSERT_TRUE(WatchedSave(*facade, which.family, path, -1, 0)) << LastError();
        const std::string newKeys = Read(which.family, path);
        const int count = calls.count;
        EXPECT_GE(count, 6) << "content, directory and selector, each with a sync";
        for (int failing = 0; failing < count; ++failing) {
            for (const int error : {EIO, ENOSPC}) {
                mFolder.Write("device.img", before);
                KesTest::ClearErrors();
                EXPECT_FALSE(WatchedSave(*facade, which.family, path, failing, error))
                    << which.name << failing;
                EXPECT_NE(LastError().find(std::strerror(error)), std::string::npos) << LastError();
                const std::string keys = Read(which.family, path);
                EXPECT_TRUE(keys == oldKeys || keys == newKeys) << which.name << failing << ": " << keys;
                ASSERT_TRUE(Save(*facade, which.family, path)) << LastError();
                EXPECT_EQ(Read(which.family, path), newKeys) << which.name << failing << ": the next save";
            }
        }
    }
}

TEST_F(DeviceImageFaults, ASaveInterruptedAtAnyByteLeavesOldOrNew) {
    constexpr std::size_t STEP = 7;
    for (const Case& which : Cases()) {
        const auto facade = Holding(which.second);
        const auto next = Holding(which.third);
        const std::string path = Prepared(which);
        const std::string before = KesTest::ReadFile(path);
        const std::string oldKeys = Read(which.family, path);
        ASSERT_TRUE(WatchedSave(*facade, which.family, path, -1, 0)) << LastError();
        const std::string newKeys = Read(which.family, path);
        const std::vector<Step> steps = calls.steps;
        std::string synced = before;  // the state to which a device may return after a power cut
        std::string written = before;
        std::size_t news = 0;
        for (const Step& step : steps) {
            if (step.IsSync()) {
                synced = written;
                continue;
            }
            for (std::size_t size = 0; size <= step.bytes.size(); ++size) {
                // A write since the last sync may be lost even if a later one is not.
                for (const std::string& base : {written, synced}) {
                    const std::string keys = ReadBytes(which.family, Applied(base, step, size));
                    EXPECT_TRUE(keys == oldKeys || keys == newKeys)
                        << which.name << " " << step.offset << ": " << keys;
                    if (keys == newKeys) ++news;
                    if (size % STEP == 0) {
                        const std::string copy = mFolder / "copy.img";
                        EXPECT_TRUE(Save(*next, which.family, copy)) << LastError();
                        EXPECT_EQ(Read(which.family, copy), Dump(*next)) << "behind a cut at " << step.offset;
                    }
                }
            }
            written = Applied(written, step, step.bytes.size());
        }
        EXPECT_EQ(written, KesTest::ReadFile(path));
        EXPECT_EQ(news, 2U) << which.name << ": only the very last byte makes it count";
    }
}

TEST_F(DeviceImageFaults, AFlippedBitNeverGivesWrongContent) {
    for (const Case& which : Cases()) {
        const std::string path = Prepared(which);
        // Saved twice, so that there are older banks, which must not be returned.
        ASSERT_TRUE(Save(*Holding(which.second), which.family, path)) << LastError();
        const std::string bytes = KesTest::ReadFile(path);
        const std::string keys = ReadBytes(which.family, bytes);
        // For the larger one only one bit of each byte.
        const std::size_t step = which.size == EEPROM_SIZE ? 1 : 9;
        std::size_t seen = 0;
        for (std::size_t bit = 0; bit < bytes.size() * 8; bit += step) {
            std::string flipped = bytes;
            flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
            const std::string outcome = ReadBytes(which.family, flipped);
            if (outcome == keys) continue;
            EXPECT_NE(outcome.find("the input seems corrupt"), std::string::npos)
                << bit / 8 << ": " << outcome;
            ++seen;
        }
        EXPECT_GT(seen * step, 1900U) << which.name << ": header, selector, directory and contents";
    }
}

TEST_F(DeviceImageFaults, ANewEepromImageIsCompleteOrAbsent) {
    const auto facade = Holding(Keys("eeprom", "max_acl_links=1"));
    const std::string path = mFolder / "new.img";
    const auto save = [&](int failing) {
        calls = {true, failing, ENOSPC, 0, {}};
        const bool good = facade->SaveToDeviceKesEeprom(path, 9, 0);
        calls.watching = false;
        return good;
    };
    ASSERT_TRUE(save(-1)) << LastError();
    const int count = calls.count;
    EXPECT_GE(count, 3) << "the content, a sync, the name";
    for (int failing = 0; failing < 3; ++failing) {
        std::filesystem::remove(path);
        EXPECT_FALSE(save(failing)) << failing;
        EXPECT_EQ(LastError(), "0 unable to write to the file: " + path + ": No space left on device");
        for (const auto& entry : std::filesystem::directory_iterator(mFolder.Path()))
            EXPECT_EQ(entry.path().filename(), "text.ktf") << failing;
    }

    const std::string blank(EEPROM_SIZE, '\xFF');
    mFolder.Write("new.img", blank);
    ASSERT_TRUE(save(-1)) << LastError();
    const std::string keys = Read(ImageFamily::Eeprom, path);
    const std::vector<Step> steps = calls.steps;
    std::string written = blank;
    std::size_t good = 0;
    for (const Step& step : steps) {
        for (std::size_t size = 0; size <= step.bytes.size() && !step.IsSync(); ++size) {
            const std::string outcome = ReadBytes(ImageFamily::Eeprom, Applied(written, step, size));
            if (outcome == keys) {
                ++good;
            } else {
                EXPECT_NE(outcome.find("corrupt"), std::string::npos) << outcome;
            }
        }
        written = Applied(written, step, step.bytes.size());
    }
    EXPECT_GE(good, 1U);
    EXPECT_EQ(written, KesTest::ReadFile(path));
}

/// An image in which some bytes have been changed and all checksums recomputed.
class LyingImage {
public:
    explicit LyingImage(std::string bytes) : mBytes(std::move(bytes)) {
        mDirectory = Get(24) + (mBytes[SELECTOR] == '\xA5' ? 0 : Get(28));
        mStore = mDirectory + 16 + 1 + static_cast<unsigned char>(mBytes[mDirectory + 16]) + 2;
        mBank = Get(mStore + 8) + Get(mStore + 16) * Get(mStore + 12);
    }
    /// The positions of fields that are read.
    std::vector<std::pair<std::size_t, std::size_t>> Fields() const {
        return {{8, 88}, {mDirectory, mStore + 32}, {mBank, mBank + 12 + Get(mBank + 8)}};
    }
    std::size_t Directory() const { return mDirectory; }
    std::size_t Store() const { return mStore; }
    void Put(std::size_t offset, std::size_t size, std::uint32_t value) {
        for (std::size_t i = 0; i < size; ++i) mBytes[offset + i] = static_cast<char>(value >> (8 * i));
    }
    std::string Sealed() {
        const std::size_t length = Get(mBank + 8);
        if (length <= mBytes.size() - mBank - 16) {
            Put(mBank + 12 + length, 4, Crc32(std::string_view(mBytes).substr(mBank, 12 + length)));
            Put(mStore + 28, 4, Crc32(std::string_view(mBytes).substr(mBank + 12, length)));
        }
        const std::size_t used = Get(mDirectory + 4);
        if (used <= mBytes.size() - mDirectory - 12)
            Put(mDirectory + 8 + used, 4, Crc32(std::string_view(mBytes).substr(mDirectory, 8 + used)));
        Put(160, 4, Crc32(std::string_view(mBytes).substr(0, 160)));
        return mBytes;
    }

private:
    static constexpr std::size_t SELECTOR = 164;
    std::uint32_t Get(std::size_t offset) const {
        return VemoKesConfigTools::ByteReader(std::string_view(mBytes).substr(offset)).Fixed<std::uint32_t>();
    }
    std::string mBytes;
    std::size_t mDirectory = 0;
    std::size_t mStore = 0;
    std::size_t mBank = 0;
};

TEST_F(DeviceImageFaults, AForgedImageWithRightChecksumsAllocatesLittleAndGivesNothing) {
    constexpr std::size_t ENOUGH = 1U << 20U;
    const Case which = Cases().front();
    const LyingImage honest(KesTest::ReadFile(Prepared(which)));
    const std::string keys = ReadBytes(which.family, LyingImage(honest).Sealed());
    EXPECT_EQ(keys, Read(which.family, mFolder / "device.img"));
    std::size_t refused = 0;
    std::size_t tried = 0;
    for (const auto& [begin, end] : honest.Fields()) {
        for (std::size_t at = begin; at < end; ++at) {
            for (const auto& [size, value] :
                 std::initializer_list<std::pair<std::size_t, std::uint32_t>>{{1, 0},
                                                                              {1, 1},
                                                                              {1, 0x7F},
                                                                              {1, 0xFF},
                                                                              {2, 0xFFFF},
                                                                              {4, 0xFFFFFFFF},
                                                                              {4, 0x7FFFFFFF},
                                                                              {4, 0xFFFFFFF0},
                                                                              {4, EEPROM_SIZE},
                                                                              {4, 0x10}}) {
                LyingImage lying = honest;
                if (at + size <= end) lying.Put(at, size, value);
                const std::string path = Copy(lying.Sealed());
                largestAllocation = 0;
                const std::string outcome = Read(which.family, path);
                static_cast<void>(VemoKesConfigTools::SystemOfImage(path));
                EXPECT_LT(largestAllocation, ENOUGH) << at << " " << value;
                if (outcome.starts_with("0 ")) ++refused;
                ++tried;
            }
        }
    }
    EXPECT_GT(refused, tried / 2);
}

TEST_F(DeviceImageFaults, HeaderAndDirectoryMustBeConsistent) {
    const Case which = Cases().front();
    const LyingImage honest(KesTest::ReadFile(Prepared(which)));
    const std::size_t store = honest.Store();
    const struct {
        std::size_t offset;
        std::size_t size;
        std::uint32_t value;
        const char* cause;
    } rows[] = {
        {8, 2, 2, "it has format version 2, this library reads version 1"},
        {10, 1, 4, "its family 4 is unknown"},
        {11, 1, 9, "its header has too many memories"},
        {16, 4, 513, "it has 512 bytes, its header says 513"},
        {24, 4, 170, "the memories of its header overlap or lie outside the image"},
        {28, 4, 0, "the memories of its header overlap or lie outside the image"},
        {28, 4, 112, "the memories of its header overlap or lie outside the image"},
        {66, 2, 2, "a memory of its header has unknown flags"},
        {68, 4, 369, "the memory table of its header is invalid"},
        {68, 4, 352, "the memories of its header overlap or lie outside the image"},
        {72, 4, 145, "the memories of its header overlap or lie outside the image"},
        {honest.Directory(), 4, 0, "its directory is damaged: its magic number is wrong"},
        {store - 2, 2, 2, "its directory is damaged: its number of stores is wrong"},
        {store, 2, 3, "its directory is damaged: store device3: the image has no such memory"},
        {store + 6, 2, 16, "its directory is damaged: a store has unknown flags"},
        {store + 6, 2, 5, "its directory is damaged: store eeprom: it lies outside its memory"},
        {store + 8, 4, 384 + 16, "its directory is damaged: store eeprom: it lies outside its memory"},
        {store + 12, 4, 16, "its directory is damaged: store eeprom: it lies outside its memory"},
        {store + 16, 4, 2, "its directory is damaged: store eeprom: its current bank is invalid"},
        {store + 16, 4, 1, "store eeprom is damaged"},
        {store + 20, 4, 2, "store eeprom is damaged"},
        {store + 20, 4, 0, "its directory is damaged: store eeprom: the length of its content is invalid"},
        {store + 24, 4, 49, "its directory is damaged: store eeprom: its content is larger than the store"},
    };
    for (const auto& row : rows) {
        LyingImage lying = honest;
        lying.Put(row.offset, row.size, row.value);
        const std::string path = Copy(lying.Sealed());
        EXPECT_EQ(Read(which.family, path), std::string("0 ") +
                                                std::string(VemoKesConfigTools::STR_PACKINT_ERROR) + ": " +
                                                path + ": " + row.cause)
            << row.offset;
    }
}

TEST_F(DeviceImageFaults, EveryTruncationIsAnError) {
    for (const Case& which : Cases()) {
        const std::string bytes = KesTest::ReadFile(Prepared(which));
        for (std::size_t size = 0; size < bytes.size(); size += size < 1024 ? 1 : 61)
            EXPECT_NE(ReadBytes(which.family, bytes.substr(0, size)).find("corrupt"), std::string::npos)
                << size;
        EXPECT_NE(ReadBytes(which.family, bytes + '\0').find("corrupt"), std::string::npos);
    }
}

}  // namespace
