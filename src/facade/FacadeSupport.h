#pragma once

#include "facade/Framework.h"
#include "messages/CTheMsgHnd.h"
#include "metadata/Chip.h"
#include "model/CKesContext.h"

#include <cstdint>
#include <string>

// What the operations of the facade share. Private to this folder.

#define KES_FACADE_FUNCTION(name) "VEMO::Kes::ConfigurationTools::FrameworkFacade::" name

namespace VEMO::Kes::ConfigurationTools {

inline constexpr const char* NO_PROVIDER = "sqlite metadata plugin not found.";
inline constexpr const char* NO_KESTEXT = "KesText readerwriter plugin not found.";
inline constexpr const char* NO_PACKINT = "Packint readerwriter plugin not found.";
inline constexpr const char* NO_CHIP = "no chip is set";

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
    DefaultHandler(function).SetErrorMsg(number, text);
    return false;
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
