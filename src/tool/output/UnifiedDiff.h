#pragma once

#include <string>

namespace kes::tool {

/// The difference of two texts in the unified format of POSIX `diff -u`, with three lines of context; empty
/// when they are equal. The names stand in the head.
std::string UnifiedDiff(const std::string& oldName, const std::string& newName, const std::string& oldText,
                        const std::string& newText);

}  // namespace kes::tool
