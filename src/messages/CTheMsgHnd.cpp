#include "messages/CTheMsgHnd.h"

#include "messages/MessageStore.h"

#include <algorithm>

namespace VemoKesConfigTools {

std::atomic<bool> CTheMsgHnd::sDebugActivated{false};

CTheMsgHnd& CTheMsgHnd::Instance() {
    static CTheMsgHnd instance;
    return instance;
}

CMessageHandler& CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GroupEnum group, const char* function,
                                                   bool traceEntry) {
    // Handlers have no destructor, so they can still be used during process exit.
    static CMessageHandler api(CMessageHandler::GROUP_MANAGED_API);
    static CMessageHandler kesText(CMessageHandler::GROUP_KESTEXT);
    static CMessageHandler stringUtil(CMessageHandler::GROUP_STRINGUTIL);
    static CMessageHandler general(CMessageHandler::GROUP_DEFAULT);
    CMessageHandler& handler = group == CMessageHandler::GROUP_KESTEXT       ? kesText
                               : group == CMessageHandler::GROUP_MANAGED_API ? api
                               : group == CMessageHandler::GROUP_STRINGUTIL  ? stringUtil
                                                                             : general;
    if (traceEntry && DebugActivated()) {
        handler.DebugOutputInHandler(0, false, false, function, "", 0, "-> %s", function);
    }
    return handler;
}

std::uint64_t CTheMsgHnd::ErrorsEver() {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    return store.errorsEver;
}

std::vector<std::string> CTheMsgHnd::KeptErrors(std::uint64_t& dropped) {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    dropped = store.errorsDropped;
    std::vector<std::string> texts;
    texts.reserve(store.errors.size());
    for (const MessageStore::Error& error : store.errors) texts.push_back(error.text);
    return texts;
}

void CTheMsgHnd::AddObserver(CMessageHandlerObserver& observer) {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    if (std::find(store.observers.begin(), store.observers.end(), &observer) == store.observers.end()) {
        store.observers.push_back(&observer);
    }
}

void CTheMsgHnd::RemoveObserver(CMessageHandlerObserver& observer) {
    MessageStore::Instance().Remove(observer);
}

}  // namespace VemoKesConfigTools
