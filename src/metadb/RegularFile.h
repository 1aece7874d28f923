#pragma once

#include <string>

namespace VemoKesConfigTools::metadb {

/// Why this path cannot be read as a regular file: "is a directory"; empty when it can. Never waits, as
/// opening a pipe would for its writer.
std::string WhyNoRegularFile(const std::string& path);

}  // namespace VemoKesConfigTools::metadb
