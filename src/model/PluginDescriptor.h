#pragma once

#include <cstdint>

namespace VemoKesConfigTools {

class IConfigReader;
class IConfigWriter;
class IMetadataProvider;
class IStoreManager;

/// The version of the contract between library and plug-ins. It changes with every change of a slot order or
/// of the descriptor.
inline constexpr std::uint32_t KES_PLUGIN_ABI_VERSION = 1;

/// The name of the C function that a plug-in file exports: it takes nothing and gives a pointer to its
/// descriptor, which lives as long as the process.
inline constexpr const char* KES_PLUGIN_ENTRY = "KesPluginDescribe";

/// What a plug-in file offers. A creator is null where the plug-in has nothing to offer. The caller owns what
/// a creator gives; a creator gives null when it cannot, and never lets an exception out. Texts are UTF-8 and
/// live for the call.
struct KesPluginDescriptor {
    std::uint32_t abiVersion;  ///< first, so that it can be read whatever follows
    const char* name;          ///< the name under which the factories know the plug-in
    /// `connection` is a path or a connection text; the meaning of `argument` is the plug-in's own. Plug-ins
    /// that work on streams take a pointer to `std::iostream` there when `connection` is empty.
    IConfigReader* (*createReader)(const char* connection, void* argument);
    IConfigWriter* (*createWriter)(const char* connection, void* argument);
    IStoreManager* (*createStoreManager)(const char* connection, void* argument);
    /// The object must also be an `IConfigReader` of the default values.
    IMetadataProvider* (*createMetadataProvider)(const char* database);
};

}  // namespace VemoKesConfigTools
