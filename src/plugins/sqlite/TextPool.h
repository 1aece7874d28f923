#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace VemoKesConfigTools {

/// Owns texts, stored contiguously at fixed addresses: records have many short texts, and many of them are
/// equal.
class CTextPool {
public:
    /// Stores a copy of the text.
    std::string_view Keep(std::string_view text);
    /// Stores a copy of the text, or returns an existing one.
    std::string_view Share(std::string_view text);

private:
    static constexpr std::size_t BLOCK = 64UL * 1024UL;

    std::vector<std::unique_ptr<char[]>> mBlocks;
    char* mpFree = nullptr;
    std::size_t mLeft = 0;
    std::unordered_set<std::string_view> mShared;
};

}  // namespace VemoKesConfigTools
