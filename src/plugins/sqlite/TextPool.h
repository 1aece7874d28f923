#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace VemoKesConfigTools {

/// Keeps texts side by side and where they are, for as long as it lives: records have many short ones, and
/// many of these are the same.
class CTextPool {
public:
    /// A copy of the text.
    std::string_view Keep(std::string_view text);
    /// The one copy of a text that may have come before.
    std::string_view Share(std::string_view text);

private:
    static constexpr std::size_t BLOCK = 64UL * 1024UL;

    std::vector<std::unique_ptr<char[]>> mBlocks;
    char* mpFree = nullptr;
    std::size_t mLeft = 0;
    std::unordered_set<std::string_view> mShared;
};

}  // namespace VemoKesConfigTools
