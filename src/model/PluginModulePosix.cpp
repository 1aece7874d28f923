#include "model/PluginDescriptor.h"
#include "model/PluginModule.h"

#include <dlfcn.h>

namespace VemoKesConfigTools {

void* OpenPluginEntry(const std::string& path, std::string& error) {
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void* entry = module == nullptr ? nullptr : dlsym(module, KES_PLUGIN_ENTRY);
    if (entry == nullptr) {
        const char* reason = dlerror();
        error = reason != nullptr ? reason : "the entry function is null";
    }
    return entry;
}

}  // namespace VemoKesConfigTools
