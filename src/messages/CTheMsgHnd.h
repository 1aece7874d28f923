#pragma once

#include "messages/CMessageHandler.h"
#include "messages/Export.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The access point to the message service. Errors are stored until they are cleared; status reports,
/// findings and trace lines only go to the observers. Thread-safe.
class KES_API CTheMsgHnd {
public:
    static CTheMsgHnd& Instance();

    /// The handler of a group. With `traceEntry` the call also traces the entry to `function`.
    static CMessageHandler& GetAppropriateHandler(CMessageHandler::GroupEnum group, const char* function,
                                                  bool traceEntry);

    /// Whether the debug trace is on. Costs one relaxed load.
    static bool DebugActivated() noexcept { return sDebugActivated.load(std::memory_order_relaxed); }
    /// Switches the debug trace, which goes to the observers, on or off.
    static void ActivateDebug(bool on) noexcept { sDebugActivated.store(on, std::memory_order_relaxed); }

    /// The number of errors stored since the process started, including cleared ones. Comparing two readings
    /// shows whether an operation in between stored any.
    static std::uint64_t ErrorsEver();

    /// The texts of the stored errors, newest last. Only the newest 1,000 are kept; `dropped` receives the
    /// number of older ones discarded since the errors were last cleared.
    static std::vector<std::string> KeptErrors(std::uint64_t& dropped);

    /// Adds an observer, not owned. Adding an observer again has no effect.
    static void AddObserver(CMessageHandlerObserver& observer);
    /// Removes an observer. Waits for calls of it that are running on other threads; once this returns, it is
    /// not called again. May be called from within an operation of the observer itself, which then continues
    /// normally. To avoid deadlocks, do not hold a lock that an operation of the observer takes, and do not
    /// let two observers remove each other from within their operations. May be called during process exit.
    static void RemoveObserver(CMessageHandlerObserver& observer);

    CTheMsgHnd(const CTheMsgHnd&) = delete;
    CTheMsgHnd& operator=(const CTheMsgHnd&) = delete;

private:
    CTheMsgHnd() = default;

    static std::atomic<bool> sDebugActivated;
};

}  // namespace VemoKesConfigTools
