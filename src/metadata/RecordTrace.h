#pragma once

#include "messages/CTheMsgHnd.h"

namespace VEMO::Kes::ConfigurationTools {

/// Traces the entry to a record's constructor. Used by the record classes only.
inline void TraceRecord(const char* constructor) {
    using VemoKesConfigTools::CMessageHandler;
    using VemoKesConfigTools::CTheMsgHnd;
    if (!CTheMsgHnd::DebugActivated()) return;
    CTheMsgHnd::Instance();
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, constructor, true);
}

}  // namespace VEMO::Kes::ConfigurationTools
