// Binds the reader of the text format to the name "KesText".

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "plugins/kit/KesPlugin.h"

#include <iostream>

namespace {

using namespace VemoKesConfigTools;

/// A connection is the name of a file; without one the argument is the `std::iostream` to read.
IConfigReader* CreateReader(const char* connection, void* argument) {
    return KesPluginCreate<IConfigReader>([&]() -> IConfigReader* {
        if (*connection != '\0') return new CKesConfigReader(std::string(connection));
        if (argument == nullptr) return nullptr;
        return new CKesConfigReader(static_cast<std::iostream*>(argument));
    });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KesText", CreateReader, nullptr, nullptr, nullptr)
