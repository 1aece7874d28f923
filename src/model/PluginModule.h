#pragma once

#include <string>

namespace VemoKesConfigTools {

/// Opens a plug-in file and gives the address of its entry function; null with the reason in `error` when it
/// cannot. The code stays mapped until the process ends, so that no object outlives its vtable.
void* OpenPluginEntry(const std::string& path, std::string& error);

}  // namespace VemoKesConfigTools
