// A plug-in of each kind that must be skipped, selected by KES_HOSTILE, and two that must not be.

#include "plugins/kit/KesPlugin.h"

#include <stdexcept>

using namespace VemoKesConfigTools;

#define NO_ENTRY 0
#define NULL_DESCRIPTOR 1
#define OTHER_ABI 2
#define NO_NAME 3
#define THROWS 4
#define CREATOR_THROWS 5
#define SECOND_OF_ITS_NAME 6

#if KES_HOSTILE == NULL_DESCRIPTOR
KES_PLUGIN_EXPORT const KesPluginDescriptor* KesPluginDescribe() { return nullptr; }
#elif KES_HOSTILE == OTHER_ABI || KES_HOSTILE == NO_NAME
KES_PLUGIN_EXPORT const KesPluginDescriptor* KesPluginDescribe() {
    static const KesPluginDescriptor descriptor = {KES_HOSTILE == OTHER_ABI ? 999U : KES_PLUGIN_ABI_VERSION,
                                                   KES_HOSTILE == NO_NAME ? "" : "hostile",
                                                   nullptr,
                                                   nullptr,
                                                   nullptr,
                                                   nullptr};
    return &descriptor;
}
#elif KES_HOSTILE == THROWS
KES_PLUGIN_EXPORT const KesPluginDescriptor* KesPluginDescribe() { throw std::runtime_error("no"); }
#elif KES_HOSTILE == CREATOR_THROWS || KES_HOSTILE == SECOND_OF_ITS_NAME
static IConfigReader* CreateReader(const char* connection, void* /*argument*/) {
    return KesPluginCreate<IConfigReader>([&]() -> IConfigReader* {
        if (*connection == '\0') throw 5;
        throw std::runtime_error(KES_HOSTILE == CREATOR_THROWS ? std::string("cannot reach ") + connection
                                                               : "second");
    });
}
KES_PLUGIN_DESCRIBE("fragile", CreateReader, nullptr, nullptr, nullptr)
#endif
