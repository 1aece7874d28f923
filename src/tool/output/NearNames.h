#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kes::tool {

/// Those of the names that are nearest to a misspelt one, the nearest first, three at most; none that is too
/// far off to have been meant. A name that begins with the word is near. Upper and lower case count as one.
std::vector<std::string> NearNames(std::string_view word, const std::vector<std::string>& names);

/// "did you mean a, b or c?", empty when there is nothing to offer.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& names);

}  // namespace kes::tool
