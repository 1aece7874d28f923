#include "messages/MessageStore.h"

namespace VemoKesConfigTools {

MessageStore& MessageStore::Instance() {
    static auto* const store = new MessageStore;
    return *store;
}

bool MessageStore::BeginCall(CMessageHandlerObserver* observer) {
    const std::lock_guard lock(mutex);
    // Check and record under one lock: `Remove` either prevents this call or waits for it.
    if (std::ranges::find(observers, observer) == observers.end()) return false;
    calls.push_back({observer, std::this_thread::get_id()});
    return true;
}

void MessageStore::EndCall(const CMessageHandlerObserver* observer) {
    const std::lock_guard lock(mutex);
    const auto ours = [&](const Call& call) {
        return call.observer == observer && call.thread == std::this_thread::get_id();
    };
    calls.erase(std::ranges::find_if(calls, ours));
    callEnded.notify_all();
}

void MessageStore::Remove(const CMessageHandlerObserver& observer) {
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock lock(mutex);
    std::erase(observers, &observer);
    // Two operations that remove the same observer on two threads must not wait for each other: mark our own
    // calls, and wake a removal that already waits for them.
    for (Call& call : calls) {
        if (call.observer == &observer && call.thread == self) call.removes = true;
    }
    callEnded.notify_all();
    callEnded.wait(lock, [&] {
        return std::ranges::none_of(calls, [&](const Call& call) {
            return call.observer == &observer && call.thread != self && !call.removes;
        });
    });
}

}  // namespace VemoKesConfigTools
