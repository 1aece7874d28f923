#include "messages/CMessageHandler.h"

#include "messages/MessageStore.h"

#include <cstdarg>
#include <cstdio>

namespace VemoKesConfigTools {

CMessageHandlerObserver::~CMessageHandlerObserver() = default;

std::string TextFinding::Message() const {
    std::string message = text;
    if (!key.empty()) message.append(": ").append(key);
    if (!detail.empty()) message.append(" ").append(detail);
    return message;
}

bool CMessageHandler::SetErrorMsg(std::int16_t number, const std::string& text) {
    MessageStore& store = MessageStore::Instance();
    {
        const std::lock_guard lock(store.mutex);
        store.errors.push_back({number, text, mGroup});
        ++store.errorsEver;
        if (store.errors.size() > MessageStore::MOST_ERRORS) {
            store.errors.pop_front();
            ++store.errorsDropped;
        }
    }
    // After the lock is released: observers may query the service.
    store.ForEachObserver([&](CMessageHandlerObserver& observer) { observer.OnError(number, text); });
    return true;
}

bool CMessageHandler::ModifyErrorMsg(std::int16_t number, const std::string& text, GroupEnum /*group*/) {
    MessageStore& store = MessageStore::Instance();
    std::string modified;
    {
        const std::lock_guard lock(store.mutex);
        if (store.errors.empty()) return false;
        MessageStore::Error& newest = store.errors.back();
        newest.number = number;
        newest.text = text + ": " + newest.text;
        modified = newest.text;
    }
    store.ForEachObserver(
        [&](CMessageHandlerObserver& observer) { observer.OnErrorModified(number, modified); });
    return true;
}

bool CMessageHandler::IsErrorSet(GroupEnum /*group*/, bool /*all*/) const {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    return !store.errors.empty();
}

bool CMessageHandler::LastError(std::int16_t& number, std::string& text, GroupEnum& group) const {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    if (store.errors.empty()) return false;
    const MessageStore::Error& newest = store.errors.back();
    number = newest.number;
    text = newest.text;
    group = newest.group;
    return true;
}

void CMessageHandler::ClearError(GroupEnum /*group*/) {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    store.errors.clear();
    store.errorsDropped = 0;
}

void CMessageHandler::NotifyStatus(StatusLevels level, const std::string& text) {
    MessageStore::Instance().ForEachObserver(
        [&](CMessageHandlerObserver& observer) { observer.OnStatus(level, text); });
}

void CMessageHandler::NotifyFinding(const TextFinding& finding) {
    MessageStore::Instance().ForEachObserver(
        [&](CMessageHandlerObserver& observer) { observer.OnFinding(finding); });
}

void CMessageHandler::NotifyProgress(std::uint64_t bytes) {
    MessageStore::Instance().ForEachObserver(
        [&](CMessageHandlerObserver& observer) { observer.OnProgress(bytes); });
}

void CMessageHandler::SetParagraphString(const std::string& text) {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    store.paragraph = text;
}

std::string CMessageHandler::GetParagraphString() const {
    MessageStore& store = MessageStore::Instance();
    const std::lock_guard lock(store.mutex);
    return store.paragraph;
}

void CMessageHandler::DebugOutputInHandler(std::uint32_t level, bool /*reserved*/, bool /*isExit*/,
                                           const char* function, const char* file, std::uint32_t line,
                                           const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    // The first call determines the length; it consumes the arguments, hence the copy.
    std::va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    va_end(arguments);

    if (level != 0) text = std::string(function) + ": " + text;
    std::string trace = "[" + std::to_string(static_cast<int>(mGroup)) + "/" + std::to_string(level) + "] " +
                        text + " (" + file + ":" + std::to_string(line) + ")";
    MessageStore::Instance().ForEachObserver(
        [&](CMessageHandlerObserver& observer) { observer.OnTrace(trace); });
}

}  // namespace VemoKesConfigTools
