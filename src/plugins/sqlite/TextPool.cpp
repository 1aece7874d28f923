#include "plugins/sqlite/TextPool.h"

#include <algorithm>

namespace VemoKesConfigTools {

std::string_view CTextPool::Keep(std::string_view text) {
    if (text.empty()) return {};
    if (text.size() > mLeft) {
        // The rest of the old block is given up: texts are short compared with a block.
        mLeft = std::max(BLOCK, text.size());
        mpFree = mBlocks.emplace_back(new char[mLeft]).get();
    }
    char* const kept = mpFree;
    std::ranges::copy(text, kept);
    mpFree += text.size();
    mLeft -= text.size();
    return {kept, text.size()};
}

std::string_view CTextPool::Share(std::string_view text) {
    if (text.empty()) return {};
    const auto known = mShared.find(text);
    return known != mShared.end() ? *known : *mShared.insert(Keep(text)).first;
}

}  // namespace VemoKesConfigTools
