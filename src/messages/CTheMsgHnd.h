#pragma once

#include "messages/CMessageHandler.h"
#include "messages/Export.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The one access point to the message service. Errors are kept until they are cleared; status reports,
/// findings and trace lines go to the observers and nowhere else. May be used from any thread.
class KES_API CTheMsgHnd {
public:
    static CTheMsgHnd& Instance();

    /// The handler of a group. With `traceEntry` the call itself is the trace of the function's entry.
    static CMessageHandler& GetAppropriateHandler(CMessageHandler::GroupEnum group, const char* function,
                                                  bool traceEntry);

    /// Whether debug lines are wanted. Costs one relaxed load.
    static bool DebugActivated() noexcept { return sDebugActivated.load(std::memory_order_relaxed); }
    /// Switches the debug trace on or off. It goes to the observers.
    static void ActivateDebug(bool on) noexcept { sDebugActivated.store(on, std::memory_order_relaxed); }

    /// How many errors were stored since the process began, cleared ones included. Two readings tell whether
    /// an operation between them stored any.
    static std::uint64_t ErrorsEver();

    /// The texts of the stored errors, the newest last. Only the newest 1,000 are kept; `dropped` is how many
    /// older ones there were since the last clearing.
    static std::vector<std::string> KeptErrors(std::uint64_t& dropped);

    /// Adds an observer, not owned. An observer that is there already is not added again.
    static void AddObserver(CMessageHandlerObserver& observer);
    /// Removes an observer, after which it is not called any more: a call that is running on another thread
    /// is waited for. It may be called from within a call of the observer itself, which then goes on. Do not
    /// hold a lock that an operation of the observer takes, and do not let two observers remove each other
    /// from within their calls. Also works while the process ends.
    static void RemoveObserver(CMessageHandlerObserver& observer);

    CTheMsgHnd(const CTheMsgHnd&) = delete;
    CTheMsgHnd& operator=(const CTheMsgHnd&) = delete;

private:
    CTheMsgHnd() = default;

    static std::atomic<bool> sDebugActivated;
};

}  // namespace VemoKesConfigTools
