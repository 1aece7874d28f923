#pragma once

#include "messages/CMessageHandler.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// What all handlers share. Private to the message service.
struct MessageStore {
    struct Error {
        std::int16_t number;
        std::string text;
        CMessageHandler::GroupEnum group;
    };

    static MessageStore& Instance();

    std::mutex mutex;
    std::vector<Error> errors;
    std::uint64_t errorsEver = 0;  ///< also those that were cleared
    std::string paragraph = "\n";
    std::vector<CMessageHandlerObserver*> observers;

    /// Calls `notify` on each observer, outside the lock, so that an observer may ask the service.
    template <typename Notify>
    void ForEachObserver(Notify notify) {
        std::vector<CMessageHandlerObserver*> current;
        {
            const std::lock_guard lock(mutex);
            current = observers;
        }
        for (CMessageHandlerObserver* observer : current) notify(*observer);
    }
};

}  // namespace VemoKesConfigTools
