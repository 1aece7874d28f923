#pragma once

#include "messages/CMessageHandler.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace VemoKesConfigTools {

/// The state shared by all handlers. Private to the message service.
struct MessageStore {
    struct Error {
        std::int16_t number;
        std::string text;
        CMessageHandler::GroupEnum group;
    };
    /// A running call of an observer.
    struct Call {
        const CMessageHandlerObserver* observer;
        std::thread::id thread;
        bool removes = false;  ///< is itself waiting in `Remove` for the same observer
    };

    /// How many errors are kept; older ones are dropped.
    static constexpr std::size_t MOST_ERRORS = 1000;

    /// Never destroyed: objects destroyed at process exit may still report or remove observers.
    static MessageStore& Instance();

    std::mutex mutex;
    std::deque<Error> errors;
    std::uint64_t errorsDropped = 0;  ///< beyond `MOST_ERRORS`, since the last clearing
    std::uint64_t errorsEver = 0;     ///< including cleared ones
    std::string paragraph = "\n";
    std::vector<CMessageHandlerObserver*> observers;
    std::vector<Call> calls;
    std::condition_variable callEnded;

    /// Removes the observer. On return no call of it is running, except on this thread.
    void Remove(const CMessageHandlerObserver& observer);

    /// Calls `notify` on each observer, without holding the lock, so that an observer may query the service.
    /// Works on a copy of the list, which observers may change in the meantime.
    template <typename Notify>
    void ForEachObserver(Notify notify) {
        std::vector<CMessageHandlerObserver*> current;
        {
            const std::lock_guard lock(mutex);
            current = observers;
        }
        for (CMessageHandlerObserver* observer : current) {
            if (!BeginCall(observer)) continue;
            const CallEnd end(*this, observer);
            notify(*observer);
        }
    }

private:
    class CallEnd {
    public:
        CallEnd(MessageStore& store, const CMessageHandlerObserver* observer)
            : mStore(store), mpObserver(observer) {}
        CallEnd(const CallEnd&) = delete;
        CallEnd& operator=(const CallEnd&) = delete;
        ~CallEnd() { mStore.EndCall(mpObserver); }

    private:
        MessageStore& mStore;
        const CMessageHandlerObserver* mpObserver;
    };

    /// Records the start of a call. Returns false if the observer has been removed in the meantime.
    bool BeginCall(CMessageHandlerObserver* observer);
    void EndCall(const CMessageHandlerObserver* observer);
};

}  // namespace VemoKesConfigTools
