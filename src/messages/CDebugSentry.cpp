#include "messages/CDebugSentry.h"

namespace VemoKesConfigTools {

void CDebugSentry::TraceEntry() {
    mpHandler->DebugOutputInHandler(0, false, false, mFunction, mFile, mLine, "-> %s", mFunction);
}

void CDebugSentry::PrintExit() {
    mpHandler->DebugOutputInHandler(0, false, true, mFunction, mFile, mLine, "<- %s", mFunction);
}

}  // namespace VemoKesConfigTools
