#include "tool/output/ProgressBar.h"

#include "tool/output/Platform.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

namespace kes::tool {

namespace {

constexpr std::chrono::seconds PATIENCE(2);
constexpr std::chrono::milliseconds PAUSE(100);

bool IsWanted() {
    const char* terminal = std::getenv("TERM");
    return ErrorsGoToTerminal() && terminal != nullptr && std::string_view(terminal) != "dumb";
}

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total)
    : mTotal(total), mWanted(total != 0 && IsWanted()), mNext(Clock::now() + PATIENCE) {}

void ProgressBar::Show(std::uint64_t done) {
    constexpr std::uint64_t WIDTH = 40;
    if (!mWanted) return;
    const Clock::time_point now = Clock::now();
    if (now < mNext) return;
    mNext = now + PAUSE;
    const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(mTotal));
    const auto full = static_cast<std::size_t>(part * WIDTH);
    const auto percent = static_cast<int>(part * 100);
    std::cerr << "\r[" << std::string(full, '#') << std::string(WIDTH - full, '.') << "] " << percent << " %"
              << std::flush;
    mDrawn = true;
}

void ProgressBar::Erase() {
    if (!mDrawn) return;
    std::cerr << "\r\x1b[K" << std::flush;
    mDrawn = false;
}

}  // namespace kes::tool
