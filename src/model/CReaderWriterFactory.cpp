#include "model/CReaderWriterFactory.h"

#include "model/PluginRegistry.h"

namespace VemoKesConfigTools {

namespace {

template <typename Creator>
auto Create(const std::map<std::string, const KesPluginDescriptor*>& plugins, const std::string& name,
            Creator KesPluginDescriptor::*creator, const std::string& connection, void* argument)
    -> decltype((*Creator())(nullptr, nullptr)) {
    const auto found = plugins.find(name);
    if (found == plugins.end() || found->second->*creator == nullptr) return nullptr;
    return (found->second->*creator)(connection.c_str(), argument);
}

}  // namespace

CReaderWriterFactory& CReaderWriterFactory::Ref() {
    static CReaderWriterFactory instance;
    return instance;
}

void CReaderWriterFactory::Load(const std::string& folder) {
    for (const KesPluginDescriptor* plugin : PluginRegistry::Ref().Load(folder))
        mPlugins.emplace(plugin->name, plugin);
}

IConfigReader* CReaderWriterFactory::CreateReader(const std::string& name, const std::string& connection,
                                                  void* argument) {
    return Create(mPlugins, name, &KesPluginDescriptor::createReader, connection, argument);
}

IConfigWriter* CReaderWriterFactory::CreateWriter(const std::string& name, const std::string& connection,
                                                  void* argument) {
    return Create(mPlugins, name, &KesPluginDescriptor::createWriter, connection, argument);
}

IStoreManager* CReaderWriterFactory::CreateStoreManager(const std::string& name,
                                                        const std::string& connection, void* argument) {
    return Create(mPlugins, name, &KesPluginDescriptor::createStoreManager, connection, argument);
}

}  // namespace VemoKesConfigTools
