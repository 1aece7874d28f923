#pragma once

#include "messages/CTheMsgHnd.h"

namespace VEMO::Kes::ConfigurationTools {

/// The entry trace of a record's constructor. For the records only.
inline void TraceRecord(const char* constructor) {
    using VemoKesConfigTools::CMessageHandler;
    using VemoKesConfigTools::CTheMsgHnd;
    if (!CTheMsgHnd::DebugActivated()) return;
    CTheMsgHnd::Instance();
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, constructor, true);
}

}  // namespace VEMO::Kes::ConfigurationTools
