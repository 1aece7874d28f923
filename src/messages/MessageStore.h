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

/// What all handlers share. Private to the message service.
struct MessageStore {
    struct Error {
        std::int16_t number;
        std::string text;
        CMessageHandler::GroupEnum group;
    };
    /// A call of an observer that is running.
    struct Call {
        const CMessageHandlerObserver* observer;
        std::thread::id thread;
        bool removes = false;  ///< is itself waiting in `Remove` for the same observer
    };

    /// How many errors are kept, the newest.
    static constexpr std::size_t MOST_ERRORS = 1000;

    /// Is never destroyed: objects that go at the end of the process may still report or remove observers.
    static MessageStore& Instance();

    std::mutex mutex;
    std::deque<Error> errors;
    std::uint64_t errorsDropped = 0;  ///< since the last clearing, those that are no longer kept
    std::uint64_t errorsEver = 0;     ///< also those that were cleared
    std::string paragraph = "\n";
    std::vector<CMessageHandlerObserver*> observers;
    std::vector<Call> calls;
    std::condition_variable callEnded;

    /// Takes the observer out. Then no call of it is running, but for those of this thread.
    void Remove(const CMessageHandlerObserver& observer);

    /// Calls `notify` on each observer, outside the lock, so that an observer may ask the service.
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

    /// Notes that a call begins; false when the observer has been removed meanwhile.
    bool BeginCall(CMessageHandlerObserver* observer);
    void EndCall(const CMessageHandlerObserver* observer);
};

}  // namespace VemoKesConfigTools
