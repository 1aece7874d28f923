#include "model/PluginDescriptor.h"
#include "model/PluginModule.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <link.h>

namespace VemoKesConfigTools {

namespace {

/// Whether all that the loader would map is in the file: what lies beyond its end raises a signal when it is
/// touched. What is no module of this machine is left to the loader to refuse.
bool IsWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(0, file.tellg()));
    ElfW(Ehdr) header{};
    file.seekg(0);
    if (!file.read(reinterpret_cast<char*>(&header), sizeof header)) return true;
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return true;
    if (header.e_phentsize != sizeof(ElfW(Phdr))) return true;
    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        if (!file.read(reinterpret_cast<char*>(&segment), sizeof segment)) return false;
        if (segment.p_offset > size || segment.p_filesz > size - segment.p_offset) return false;
    }
    return true;
}

}  // namespace

void* OpenPluginEntry(const std::string& path, std::string& error) {
    if (!IsWhole(path)) {
        error = "it is cut short";
        return nullptr;
    }
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void* entry = module == nullptr ? nullptr : dlsym(module, KES_PLUGIN_ENTRY);
    if (entry == nullptr) {
        const char* reason = dlerror();
        error = reason != nullptr ? reason : "the entry function is null";
    }
    return entry;
}

}  // namespace VemoKesConfigTools
