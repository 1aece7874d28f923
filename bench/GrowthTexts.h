#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace KesBench {

/// A kind of text that can be made of any size.
struct GrowthText {
    const char* name;
    std::size_t size;  ///< the smaller of the two sizes that are compared
    std::string (*make)(std::size_t size);
    bool isGood = true;  ///< read without an error
};

/// Texts in which one thing grows: whatever a step could look at again for each of its parts.
std::span<const GrowthText> GrowthTexts();

inline constexpr const char* GROWTH_SYSTEM = "growth";
inline constexpr std::uint32_t GROWTH_KEYS = 100000;  ///< how many simple keys the metadata knows

/// Makes a metadata database for these texts, whose lengths have no bound that matters.
void WriteGrowthDatabase(const std::string& path);

}  // namespace KesBench
