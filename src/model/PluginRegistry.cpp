#include "model/PluginRegistry.h"

#include "messages/CTheMsgHnd.h"
#include "model/PluginModule.h"
#include "model/Words.h"

#include <algorithm>
#include <filesystem>

namespace VemoKesConfigTools {

namespace fs = std::filesystem;

namespace {

/// Asks a foreign module, so nothing of what it says is taken on trust.
const KesPluginDescriptor* Describe(void* entry, std::string& error) {
    try {
        const auto* descriptor = reinterpret_cast<const KesPluginDescriptor* (*)()>(entry)();
        if (descriptor == nullptr) {
            error = "it gives no descriptor";
        } else if (descriptor->abiVersion != KES_PLUGIN_ABI_VERSION) {
            error = "it was built for ABI version " + std::to_string(descriptor->abiVersion) +
                    ", this library has " + std::to_string(KES_PLUGIN_ABI_VERSION);
        } else if (descriptor->name == nullptr || *descriptor->name == '\0') {
            error = "it has no name";
        } else {
            return descriptor;
        }
    } catch (...) {
        error = "its entry function threw";
    }
    return nullptr;
}

}  // namespace

PluginRegistry& PluginRegistry::Ref() {
    static PluginRegistry instance;
    return instance;
}

std::vector<const KesPluginDescriptor*> PluginRegistry::Load(const std::string& folder) {
    const std::string_view extension = PLUGIN_WILDCARD.substr(1);
    std::vector<std::string> paths;
    std::error_code failed;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const std::string path = entry->path().string();
        std::error_code ignored;
        if (path.ends_with(extension) && entry->is_regular_file(ignored)) paths.push_back(path);
    }
    if (failed) LeaveOut(folder, failed.message());
    std::ranges::sort(paths);

    std::vector<const KesPluginDescriptor*> plugins;
    for (const std::string& path : paths) {
        if (const KesPluginDescriptor* plugin = Open(path)) plugins.push_back(plugin);
    }
    return plugins;
}

void PluginRegistry::ReportLeftOut() const {
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "PluginRegistry", false);
    for (const auto& [path, why] : mLeftOut) {
        std::string text = path;
        text.append(" left out: ").append(why);
        handler.NotifyStatus(CMessageHandler::STATUS_LEVEL_WARNING, text);
    }
}

void PluginRegistry::LeaveOut(const std::string& path, const std::string& why) {
    mLeftOut[path] = why;
    if (!CTheMsgHnd::DebugActivated()) return;
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "PluginRegistry::Load", false)
        .DebugOutputInHandler(1, false, false, "PluginRegistry::Load", __FILE__, __LINE__, "%s left out: %s",
                              path.c_str(), why.c_str());
}

const KesPluginDescriptor* PluginRegistry::Open(const std::string& path) {
    std::error_code failed;
    const std::string canonical = fs::canonical(path, failed).string();
    if (failed) {
        LeaveOut(path, failed.message());
        return nullptr;
    }
    if (const auto known = mOpened.find(canonical); known != mOpened.end()) return known->second;

    std::string error;
    void* entry = OpenPluginEntry(canonical, error);
    const KesPluginDescriptor* descriptor = entry == nullptr ? nullptr : Describe(entry, error);
    if (descriptor == nullptr) {
        LeaveOut(path, error);
        return nullptr;
    }
    mLeftOut.erase(path);
    mOpened.emplace(canonical, descriptor);
    return descriptor;
}

}  // namespace VemoKesConfigTools
