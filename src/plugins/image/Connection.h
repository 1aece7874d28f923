#pragma once

#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// The path in a connection, which is a path or "file:" and a path. "?" is reserved for options; there are
/// none yet, so any is an error. Throws `Refusal`.
std::string PathOfConnection(std::string_view connection);

}  // namespace VemoKesConfigTools
