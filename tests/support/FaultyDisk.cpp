#include "support/FaultyDisk.h"

#include <cerrno>
#include <dlfcn.h>
#include <sys/types.h>

namespace KesTest {

namespace {

FaultyDisk* gDisk = nullptr;

/// The call of this name behind the one of this program.
template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FaultyDisk::FaultyDisk() { gDisk = this; }

FaultyDisk::FaultyDisk(std::size_t call, int error, After after)
    : mFailing(call), mError(error), mAfter(after) {
    gDisk = this;
}

FaultyDisk::~FaultyDisk() { gDisk = nullptr; }

bool FaultyDisk::IsThere() { return gDisk != nullptr; }

bool FaultyDisk::Fails() {
    if (gDisk == nullptr) return false;
    const std::size_t call = ++gDisk->mCalls;
    if (gDisk->mFailing == 0 || call < gDisk->mFailing) return false;
    if (call > gDisk->mFailing && gDisk->mAfter == After::Goes) return false;
    errno = gDisk->mError;
    return true;
}

void FaultyDisk::Keep(long offset, const void* bytes, std::size_t size) {
    if (gDisk != nullptr) gDisk->mWrites.push_back({offset, {static_cast<const char*>(bytes), size}});
}

}  // namespace KesTest

// These names of the program go before those of the C library, in the plug-ins too.
#define KES_TEST_EXPORT extern "C" __attribute__((visibility("default")))

KES_TEST_EXPORT ssize_t write(int file, const void* bytes, size_t size) {
    if (KesTest::FaultyDisk::Fails()) return -1;
    KesTest::FaultyDisk::Keep(-1, bytes, size);
    return KesTest::Real<ssize_t(int, const void*, size_t)>("write")(file, bytes, size);
}

KES_TEST_EXPORT ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    if (KesTest::FaultyDisk::Fails()) return -1;
    KesTest::FaultyDisk::Keep(offset, bytes, size);
    return KesTest::Real<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, size, offset);
}

KES_TEST_EXPORT int fsync(int file) {
    if (KesTest::FaultyDisk::Fails()) return -1;
    // What a test looks at is what programs see, not what the disk holds; the wait is left out.
    return KesTest::FaultyDisk::IsThere() ? 0 : KesTest::Real<int(int)>("fsync")(file);
}

KES_TEST_EXPORT int ftruncate(int file, off_t size) noexcept {
    return KesTest::FaultyDisk::Fails() ? -1 : KesTest::Real<int(int, off_t)>("ftruncate")(file, size);
}

KES_TEST_EXPORT int rename(const char* from, const char* to) noexcept {
    return KesTest::FaultyDisk::Fails() ? -1
                                        : KesTest::Real<int(const char*, const char*)>("rename")(from, to);
}
