#include "plugins/binary/Refusal.h"

#include "messages/CTheMsgHnd.h"
#include "model/Words.h"

namespace VemoKesConfigTools {

namespace {

std::string_view TextOf(files::FileAction action) {
    switch (action) {
        case files::FileAction::OPEN:
        case files::FileAction::LOCK:
            return STR_FILE_OPEN_ERR;
        case files::FileAction::READ:
            return STR_FILE_READ_ERR;
        case files::FileAction::WRITE:
        case files::FileAction::REFUSED:
        case files::FileAction::CHANGED:
            break;
    }
    return STR_FILE_WRITE_ERR;
}

}  // namespace

Refusal ToRefusal(const files::FileError& error, const std::string& subject) {
    // A connection may have a scheme in front of the path.
    const bool isSubject = subject.ends_with(error.Path());
    return {TextOf(error.Action()), isSubject ? error.Cause() : error.Path() + ": " + error.Cause()};
}

void Report(const char* function, const Refusal& refusal, const std::string& subject) {
    constexpr std::int16_t ERROR_DATA = 0;
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
    // In one piece, as observers hear of it.
    const std::string cause = subject.empty() ? refusal.what() : subject + ": " + refusal.what();
    handler.SetErrorMsg(ERROR_DATA, std::string(refusal.Text()) + ": " + cause);
}

}  // namespace VemoKesConfigTools
