// Registers the reader and the writer of chunk files under the name "Packint".

#include "plugins/kit/KesPlugin.h"
#include "plugins/packint/CPackintReader.h"
#include "plugins/packint/CPackintWriter.h"

#include <iostream>

namespace {

using namespace VemoKesConfigTools;

/// The connection is the name of a file; if it is empty, the argument is the `std::iostream` to use.
IConfigReader* CreateReader(const char* connection, void* argument) {
    return KesPluginCreate<IConfigReader>([&]() -> IConfigReader* {
        if (*connection != '\0') return new CPackintReader(std::string(connection));
        if (argument == nullptr) return nullptr;
        return new CPackintReader(static_cast<std::iostream*>(argument));
    });
}

/// The connection is the name of a folder.
IConfigWriter* CreateWriter(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigWriter>([&]() -> IConfigWriter* {
        return *connection == '\0' ? nullptr : new CPackintWriter(std::string(connection));
    });
}

}  // namespace

KES_PLUGIN_DESCRIBE("Packint", CreateReader, CreateWriter, nullptr, nullptr)
