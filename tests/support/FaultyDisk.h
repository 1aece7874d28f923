#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace KesTest {

/// Stands between a test program, its plug-ins included, and the calls that change files: write, pwrite,
/// fsync, ftruncate and rename. Counts them, keeps what they write, and lets them fail. One at a time; it
/// works for as long as it lives.
class FaultyDisk {
public:
    struct Write {
        long offset;  ///< -1 where the file is written from front to back
        std::string bytes;
    };
    /// What becomes of the calls from the failing one on.
    enum class After {
        Goes,  ///< they work again, as after a passing fault
        Dead   ///< none of them works, as when the power is gone
    };

    /// Nothing fails.
    FaultyDisk();
    /// The call of this number, from 1, fails with `error`.
    FaultyDisk(std::size_t call, int error, After after);
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;
    ~FaultyDisk();

    std::size_t Calls() const { return mCalls; }
    const std::vector<Write>& Writes() const { return mWrites; }

    static bool IsThere();
    /// For the calls themselves: whether this one fails, with `errno` set.
    static bool Fails();
    static void Keep(long offset, const void* bytes, std::size_t size);

private:
    std::size_t mFailing = 0;
    int mError = 0;
    After mAfter = After::Goes;
    std::size_t mCalls = 0;
    std::vector<Write> mWrites;
};

}  // namespace KesTest
