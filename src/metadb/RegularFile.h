#pragma once

#include <string>

namespace VemoKesConfigTools::metadb {

/// Why this path cannot be read as a regular file, such as "is a directory"; empty if it can. Does not block,
/// as opening a pipe without a writer would.
std::string WhyNoRegularFile(const std::string& path);

}  // namespace VemoKesConfigTools::metadb
