#pragma once

// The interface for authors of plug-ins. A plug-in is a module file `NAME.kpm` that links against the
// library:
//
//     #include "plugins/kit/KesPlugin.h"
//
//     class MyReader final : public VemoKesConfigTools::IConfigReader { ... };
//
//     static VemoKesConfigTools::IConfigReader* CreateReader(const char* connection, void* argument) {
//         return VemoKesConfigTools::KesPluginCreate<VemoKesConfigTools::IConfigReader>(
//             [&] { return new MyReader(connection, argument); });
//     }
//
//     KES_PLUGIN_DESCRIBE("MyFormat", CreateReader, nullptr, nullptr, nullptr)
//
// The creators may be called on any thread and any number of times.

#include "messages/CTheMsgHnd.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"
#include "model/IStoreManager.h"
#include "model/PluginDescriptor.h"

#include <exception>

#if defined(_WIN32)
#define KES_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define KES_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// Defines the entry function of the plug-in. `name` is a string literal; each creator is a function or
/// nullptr.
#define KES_PLUGIN_DESCRIBE(name, createReader, createWriter, createStoreManager, createMetadataProvider) \
    KES_PLUGIN_EXPORT const VemoKesConfigTools::KesPluginDescriptor* KesPluginDescribe() {                \
        static const VemoKesConfigTools::KesPluginDescriptor descriptor = {                               \
            VemoKesConfigTools::KES_PLUGIN_ABI_VERSION,                                                   \
            name,                                                                                         \
            createReader,                                                                                 \
            createWriter,                                                                                 \
            createStoreManager,                                                                           \
            createMetadataProvider};                                                                      \
        return &descriptor;                                                                               \
    }

namespace VemoKesConfigTools {

/// Runs the body of a creator. Any exception is stored as an error of number 1, and the result is null:
/// exceptions must not cross the plug-in boundary.
template <typename Interface, typename Make>
Interface* KesPluginCreate(Make make) noexcept {
    const auto report = [](const char* reason) {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "KesPluginCreate", false)
            .SetErrorMsg(1, reason);
    };
    try {
        try {
            return make();
        } catch (const std::exception& error) {
            report(error.what());
        } catch (...) {
            report("unknown exception");
        }
    } catch (...) {
        // There is not even enough memory to report the error.
    }
    return nullptr;
}

}  // namespace VemoKesConfigTools
