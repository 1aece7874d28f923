#include "files/Files.h"
#include "model/PluginDescriptor.h"
#include "model/PluginModule.h"

#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <link.h>

namespace VemoKesConfigTools {

namespace {

/// Whether all that the loader would map is in the file: what lies beyond its end raises a signal when it is
/// touched. What is no module of this machine is left to the loader to refuse.
bool IsWhole(const std::string& path) {
    const std::string start = files::ReadStart(path, sizeof(ElfW(Ehdr)));
    ElfW(Ehdr) header{};
    if (start.size() < sizeof header) return true;
    std::memcpy(&header, start.data(), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return true;
    if (header.e_phentsize != sizeof(ElfW(Phdr))) return true;
    const std::uint64_t size = files::Look(path)->size;
    const std::uint64_t tableSize = std::uint64_t{header.e_phnum} * sizeof(ElfW(Phdr));
    if (header.e_phoff > size || tableSize > size - header.e_phoff) return false;
    const std::string bytes = files::ReadStart(path, header.e_phoff + tableSize);
    for (std::uint64_t at = header.e_phoff; at < bytes.size(); at += sizeof(ElfW(Phdr))) {
        ElfW(Phdr) segment{};
        std::memcpy(&segment, bytes.data() + at, sizeof segment);
        if (segment.p_offset > size || segment.p_filesz > size - segment.p_offset) return false;
    }
    return true;
}

}  // namespace

void* OpenPluginEntry(const std::string& path, std::string& error) {
    try {
        if (!IsWhole(path)) {
            error = "it is cut short";
            return nullptr;
        }
    } catch (const files::FileError& failure) {
        error = failure.Reason();
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
