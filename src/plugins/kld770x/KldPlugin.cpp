// Registers the reader, the writer and the store manager of a device's non-volatile stores under the name
// "KLD770xDevice".

#include "plugins/image/CImageReader.h"
#include "plugins/kit/KesPlugin.h"
#include "plugins/kld770x/CKldStoreManager.h"
#include "plugins/kld770x/CKldWriter.h"

namespace {

using namespace VemoKesConfigTools;

IConfigReader* CreateReader(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigReader>([&] { return new CImageReader(connection, ImageFamily::Kld); });
}

/// The argument points to a bool: whether to merge with the content of the device. Without an argument it
/// merges, so that nothing is lost.
IConfigWriter* CreateWriter(const char* connection, void* argument) {
    return KesPluginCreate<IConfigWriter>([&] {
        const bool isMerging = argument == nullptr || *static_cast<const bool*>(argument);
        return new CKldWriter(connection, isMerging);
    });
}

IStoreManager* CreateStoreManager(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IStoreManager>([&] { return new CKldStoreManager(connection); });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KLD770xDevice", CreateReader, CreateWriter, CreateStoreManager, nullptr)
