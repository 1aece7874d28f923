#include "model/CMetadataProviderFactory.h"

#include "model/PluginRegistry.h"

namespace VemoKesConfigTools {

CMetadataProviderFactory& CMetadataProviderFactory::Ref() {
    static CMetadataProviderFactory instance;
    return instance;
}

void CMetadataProviderFactory::Load(const std::string& folder) {
    for (const KesPluginDescriptor* plugin : PluginRegistry::Ref().Load(folder))
        mPlugins.emplace(plugin->name, plugin);
}

IMetadataProvider* CMetadataProviderFactory::Create(const std::string& name, const std::string& database) {
    const auto found = mPlugins.find(name);
    if (found == mPlugins.end() || found->second->createMetadataProvider == nullptr) return nullptr;
    return found->second->createMetadataProvider(database.c_str());
}

void CMetadataProviderFactory::Release() { mPlugins.clear(); }

}  // namespace VemoKesConfigTools
