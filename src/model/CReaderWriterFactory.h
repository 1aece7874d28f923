#pragma once

#include "messages/Export.h"

#include <map>
#include <string>

namespace VemoKesConfigTools {

class IConfigReader;
class IConfigWriter;
class IStoreManager;
struct KesPluginDescriptor;

/// Makes readers, writers and store managers by plug-in name. One instance for the process. The caller owns
/// what is made and deletes it through its virtual destructor. Null when the plug-in is absent or has nothing
/// of the kind.
class KES_API CReaderWriterFactory {
public:
    static CReaderWriterFactory& Ref();

    /// Makes the plug-ins of a folder known. Of two of one name the first loaded stays; loading twice changes
    /// nothing.
    void Load(const std::string& folder);
    /// Whether there is a plug-in of this name, whatever it can make.
    bool Knows(const std::string& name) const { return mPlugins.contains(name); }
    /// `connection` is a path or a connection text. For readers and writers of a stream it is empty and
    /// `argument` is a pointer to a `std::iostream`, which must outlive the object.
    IConfigReader* CreateReader(const std::string& name, const std::string& connection, void* argument);
    IConfigWriter* CreateWriter(const std::string& name, const std::string& connection, void* argument);
    IStoreManager* CreateStoreManager(const std::string& name, const std::string& connection, void* argument);

private:
    CReaderWriterFactory() = default;

    std::map<std::string, const KesPluginDescriptor*> mPlugins;
};

}  // namespace VemoKesConfigTools
