#pragma once

#include "messages/Export.h"

#include <map>
#include <string>

namespace VemoKesConfigTools {

class IMetadataProvider;
struct KesPluginDescriptor;

/// Makes metadata providers by plug-in name. One instance for the process.
class KES_API CMetadataProviderFactory {
public:
    static CMetadataProviderFactory& Ref();

    /// Makes the plug-ins of a folder known. Of two of one name the first loaded stays; loading twice changes
    /// nothing.
    void Load(const std::string& folder);
    /// A provider on the named database; null when the plug-in is absent. The caller owns it.
    IMetadataProvider* Create(const std::string& name, const std::string& database);
    /// Forgets all plug-ins. Providers that were made go on working.
    void Release();

private:
    CMetadataProviderFactory() = default;

    std::map<std::string, const KesPluginDescriptor*> mPlugins;
};

}  // namespace VemoKesConfigTools
