// Registers the reader and the writer of the text format under the name "KesText".

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesWriter.h"
#include "plugins/kit/KesPlugin.h"

#include <iostream>

namespace {

using namespace VemoKesConfigTools;

/// The connection is the name of a file; if it is empty, the argument is the `std::iostream` to use.
IConfigReader* CreateReader(const char* connection, void* argument) {
    return KesPluginCreate<IConfigReader>([&]() -> IConfigReader* {
        if (*connection != '\0') return new CKesConfigReader(std::string(connection));
        if (argument == nullptr) return nullptr;
        return new CKesConfigReader(static_cast<std::iostream*>(argument));
    });
}

/// Connection and argument are as for the reader. The caller sets the metadata provider.
IConfigWriter* CreateWriter(const char* connection, void* argument) {
    return KesPluginCreate<IConfigWriter>([&]() -> IConfigWriter* {
        if (*connection != '\0') return new CKesWriter(std::string(connection), nullptr);
        if (argument == nullptr) return nullptr;
        return new CKesWriter(static_cast<std::iostream*>(argument), nullptr);
    });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KesText", CreateReader, CreateWriter, nullptr, nullptr)
