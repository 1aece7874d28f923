#pragma once

#include <chrono>
#include <cstdint>

namespace kes::tool {

/// A bar on standard error for work that takes more than two seconds. On a terminal only; elsewhere it does
/// nothing. Erase it before anything else is printed; it erases itself at its end.
class ProgressBar {
public:
    /// `total` is the number of bytes of all the work.
    explicit ProgressBar(std::uint64_t total);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { Erase(); }

    /// How many bytes are done. May be called often: it draws a few times a second.
    void Show(std::uint64_t done);
    void Erase();

private:
    using Clock = std::chrono::steady_clock;

    std::uint64_t mTotal;
    bool mWanted;
    bool mDrawn = false;
    Clock::time_point mNext;  ///< not drawn again before
};

}  // namespace kes::tool
