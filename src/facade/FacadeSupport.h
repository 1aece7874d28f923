#pragma once

#include "facade/Framework.h"
#include "messages/CTheMsgHnd.h"
#include "metadata/Chip.h"
#include "model/CKesContext.h"
#include "model/CReaderWriterFactory.h"
#include "model/PluginRegistry.h"

#include <cstdint>
#include <string>

// What the operations of the facade share. Private to this folder.

#define KES_FACADE_FUNCTION(name) "VEMO::Kes::ConfigurationTools::FrameworkFacade::" name

namespace VEMO::Kes::ConfigurationTools {

inline constexpr const char* NO_PROVIDER = "sqlite metadata plugin not found.";
inline constexpr const char* NO_CHIP = "no chip is set";
inline constexpr const char* NO_TEXT = "The text file is zero length. No config data found.";

/// A plug-in of readers and writers, and what is said when one cannot be had.
struct PluginWords {
    const char* name;
    const char* absent;
    const char* noTarget;  ///< the plug-in is there, but no file, folder or device was named
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

/// Stores an error, and is the false that the operation gives.
inline bool Fail(const char* function, std::int16_t number, const char* text) {
    // A plug-in that is missed may be one that could not be loaded.
    if (number == ERROR_PLUGIN) VemoKesConfigTools::PluginRegistry::Ref().ReportLeftOut();
    DefaultHandler(function).SetErrorMsg(number, text);
    return false;
}

/// Stores why the plug-in made nothing for the target, and is the false that the operation gives.
inline bool FailWithout(const char* function, const PluginWords& plugin, const std::string& target) {
    if (target.empty() && VemoKesConfigTools::CReaderWriterFactory::Ref().Knows(plugin.name)) {
        return Fail(function, ERROR_DATA, plugin.noTarget);
    }
    return Fail(function, ERROR_PLUGIN, plugin.absent);
}

/// A context of the chip, with nothing else said.
inline VemoKesConfigTools::CKesContext ChipContext(const Chip& chip) {
    VemoKesConfigTools::CKesContext context;
    context.SetChip(Framework::GetString(chip.SystemVersionLabel()));
    return context;
}

/// The context of what is read or written as configuration.
inline VemoKesConfigTools::CKesContext FileContext(const Chip& chip) {
    constexpr std::int32_t FILE_TYPE = 1;
    VemoKesConfigTools::CKesContext context = ChipContext(chip);
    context.SetFileType(FILE_TYPE);
    return context;
}

}  // namespace VEMO::Kes::ConfigurationTools
