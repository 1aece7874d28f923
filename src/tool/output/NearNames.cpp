#include "tool/output/NearNames.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace kes::tool {

namespace {

constexpr std::size_t MOST_NAMES = 3;
constexpr std::size_t SHORTEST_BEGINNING = 4;

std::string Folded(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), [](unsigned char c) { return std::tolower(c); });
    return folded;
}

/// How many letters have to be put in, left out, replaced, or swapped with their neighbour.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> before(right.size() + 1);
    std::vector<std::size_t> above(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(above.begin(), above.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replace = above[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, replace});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        std::swap(before, above);
        std::swap(above, row);
    }
    return above[right.size()];
}

}  // namespace

std::vector<std::string> NearNames(std::string_view word, const std::vector<std::string>& names) {
    const std::string folded = Folded(word);
    const std::size_t limit = std::clamp<std::size_t>(folded.size() / 3, 1, 4);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& name : names) {
        if (folded.size() >= SHORTEST_BEGINNING && Folded(name).starts_with(folded)) {
            near.emplace_back(1, name);
            continue;
        }
        const std::size_t longer = std::max(name.size(), folded.size());
        if (longer - std::min(name.size(), folded.size()) > limit) continue;
        const std::size_t distance = Distance(folded, Folded(name));
        if (distance <= limit) near.emplace_back(distance, name);
    }
    std::ranges::sort(near);
    near.erase(std::unique(near.begin(), near.end()), near.end());
    std::vector<std::string> result;
    for (auto& [distance, name] : near) {
        if (result.size() == MOST_NAMES) break;
        result.push_back(std::move(name));
    }
    return result;
}

std::string DidYouMean(std::string_view word, const std::vector<std::string>& names) {
    const std::vector<std::string> near = NearNames(word, names);
    if (near.empty()) return {};
    std::string text = "did you mean " + near.front();
    for (std::size_t i = 1; i < near.size(); ++i) {
        text += (i + 1 == near.size() ? " or " : ", ") + near[i];
    }
    return text + "?";
}

}  // namespace kes::tool
