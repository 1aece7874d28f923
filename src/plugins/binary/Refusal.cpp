#include "plugins/binary/Refusal.h"

#include "messages/CTheMsgHnd.h"

namespace VemoKesConfigTools {

void Report(const char* function, const Refusal& refusal, const std::string& subject) {
    constexpr std::int16_t ERROR_DATA = 0;
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
    // In one piece, as observers hear of it.
    const std::string cause = subject.empty() ? refusal.what() : subject + ": " + refusal.what();
    handler.SetErrorMsg(ERROR_DATA, std::string(refusal.Text()) + ": " + cause);
}

}  // namespace VemoKesConfigTools
