#pragma once

#include <string>

namespace kes::cli {

/// The path of the running command, empty when the system does not tell it.
std::string ExecutablePath();

/// Whether standard error is a terminal.
bool ErrorsGoToTerminal();

/// Brings a written file to the disk, then gives it its final name in one step. False with `errno` set.
bool SyncAndRename(const std::string& from, const std::string& to);

/// A name beside `path` that no other process uses.
std::string TemporaryBeside(const std::string& path);

}  // namespace kes::cli
