#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kes::tool {

/// The comments of a configuration text without errors, in their order, without marks and blanks around them.
/// Comments of a line each that follow one another stay apart. Lines of marks alone, which only rule a
/// heading off, are left out.
std::vector<std::string> CommentsOf(std::string_view text);

/// The comments of a text that another one lacks.
std::vector<std::string> CommentsMissing(std::string_view text, std::string_view other);

}  // namespace kes::tool
