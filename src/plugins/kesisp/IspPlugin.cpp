// Registers the reader and the writer of a device's store sets under the name "KesIsp".

#include "plugins/kesisp/CIspReader.h"
#include "plugins/kesisp/CIspWriter.h"
#include "plugins/kit/KesPlugin.h"

namespace {

using namespace VemoKesConfigTools;

IConfigReader* CreateReader(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigReader>([&] { return new CIspReader(connection); });
}

IConfigWriter* CreateWriter(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigWriter>([&] { return new CIspWriter(connection); });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KesIsp", CreateReader, CreateWriter, nullptr, nullptr)
