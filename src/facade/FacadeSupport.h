#pragma once

#include "facade/Framework.h"
#include "messages/CTheMsgHnd.h"
#include "metadata/Chip.h"
#include "model/CKesContext.h"
#include "model/CReaderWriterFactory.h"
#include "model/PluginRegistry.h"

#include <cstdint>
#include <string>

// Helpers shared by the operations of the facade. Private to this folder.

#define KES_FACADE_FUNCTION(name) "VEMO::Kes::ConfigurationTools::FrameworkFacade::" name

namespace VEMO::Kes::ConfigurationTools {

inline constexpr const char* NO_PROVIDER = "sqlite metadata plugin not found.";
inline constexpr const char* NO_CHIP = "no chip is set";
inline constexpr const char* NO_TEXT = "The text file is zero length. No config data found.";

/// A plug-in of readers and writers, with the messages for when it cannot be used.
struct PluginWords {
    const char* name;
    const char* absent;
    const char* noTarget;  ///< the plug-in exists, but no file, folder or device was named
};

inline constexpr PluginWords KESTEXT{"KesText", "KesText readerwriter plugin not found.",
                                     "no file name is given"};
inline constexpr PluginWords PACKINT{"Packint", "Packint readerwriter plugin not found.",
                                     "no folder name is given"};

inline constexpr std::int16_t ERROR_DATA = 0;
inline constexpr std::int16_t ERROR_PLUGIN = 1;

inline VemoKesConfigTools::CMessageHandler& DefaultHandler(const char* function) {
    using VemoKesConfigTools::CMessageHandler;
    using VemoKesConfigTools::CTheMsgHnd;
    CTheMsgHnd::Instance();
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
}

/// Stores an error and returns false, for the operation to return.
inline bool Fail(const char* function, std::int16_t number, const char* text) {
    // The missing plug-in may be one that could not be loaded: report those first, so that the cause is seen.
    if (number == ERROR_PLUGIN) VemoKesConfigTools::PluginRegistry::Ref().ReportLeftOut();
    DefaultHandler(function).SetErrorMsg(number, text);
    return false;
}

/// Stores why the plug-in created no object for the target, and returns false.
inline bool FailWithout(const char* function, const PluginWords& plugin, const std::string& target) {
    if (target.empty() && VemoKesConfigTools::CReaderWriterFactory::Ref().Knows(plugin.name)) {
        return Fail(function, ERROR_DATA, plugin.noTarget);
    }
    return Fail(function, ERROR_PLUGIN, plugin.absent);
}

/// A context with the chip set and nothing else.
inline VemoKesConfigTools::CKesContext ChipContext(const Chip& chip) {
    VemoKesConfigTools::CKesContext context;
    context.SetChip(Framework::GetString(chip.SystemVersionLabel()));
    return context;
}

/// The context for reading or writing a configuration.
inline VemoKesConfigTools::CKesContext FileContext(const Chip& chip) {
    constexpr std::int32_t FILE_TYPE = 1;
    VemoKesConfigTools::CKesContext context = ChipContext(chip);
    context.SetFileType(FILE_TYPE);
    return context;
}

}  // namespace VEMO::Kes::ConfigurationTools
