#pragma once

#include <string_view>

namespace kes::cli {

// The files of `completion/`, which the build puts into the command.
extern const std::string_view BASH_COMPLETION;
extern const std::string_view ZSH_COMPLETION;
extern const std::string_view FISH_COMPLETION;

}  // namespace kes::cli
