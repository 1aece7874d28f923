// Registers the reader and the writer of a device's EEPROM under the name "KesEeprom".

#include "plugins/image/CImageReader.h"
#include "plugins/keseeprom/CEepromWriter.h"
#include "plugins/kit/KesPlugin.h"

namespace {

using namespace VemoKesConfigTools;

IConfigReader* CreateReader(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigReader>([&] { return new CImageReader(connection, ImageFamily::Eeprom); });
}

IConfigWriter* CreateWriter(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigWriter>([&] { return new CEepromWriter(connection); });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KesEeprom", CreateReader, CreateWriter, nullptr, nullptr)
