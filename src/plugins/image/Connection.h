#pragma once

#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// The path that a connection names: it is a path, or "file:" and a path. Options would stand behind a "?";
/// there are none yet, so that any is refused. Throws `Refusal`.
std::string PathOfConnection(std::string_view connection);

}  // namespace VemoKesConfigTools
