#pragma once

#include "messages/CDebugSentry.h"

// Traces of the text reader and writer, in their message group. They cost one test while debug is off.

/// A sentry that shows the variable `result` at the end.
#define KESTEXT_SENTRY_RETURNING(function, result)           \
    const VemoKesConfigTools::CDebugSentryWithReturn sentry( \
        VemoKesConfigTools::KesTextTraceHandler(function), __LINE__, __FILE__, function, &(result))

/// A debug line; its arguments are not even made while debug is off.
#define KESTEXT_TRACE(level, function, ...)                                      \
    do {                                                                         \
        if (VemoKesConfigTools::CTheMsgHnd::DebugActivated())                    \
            VemoKesConfigTools::KesTextHandler(function).DebugOutputInHandler(   \
                level, false, false, function, __FILE__, __LINE__, __VA_ARGS__); \
    } while (false)

namespace VemoKesConfigTools {

inline CMessageHandler& KesTextHandler(const char* function) {
    CTheMsgHnd::Instance();
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_KESTEXT, function, false);
}

inline CMessageHandler* KesTextTraceHandler(const char* function) {
    return CTheMsgHnd::DebugActivated() ? &KesTextHandler(function) : nullptr;
}

}  // namespace VemoKesConfigTools
