// Binds the metadata provider to the name "sqlite". The connection is the name of a database file.

#include "plugins/kit/KesPlugin.h"
#include "plugins/sqlite/SqliteProvider.h"

namespace {

using namespace VemoKesConfigTools;

IMetadataProvider* CreateProvider(const char* database) {
    return KesPluginCreate<IMetadataProvider>([&] { return new CSqliteProvider(database); });
}

}  // namespace

KES_PLUGIN_DESCRIBE("sqlite", nullptr, nullptr, nullptr, CreateProvider)
