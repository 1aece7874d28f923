#include "plugins/binary/Refusal.h"

#include "messages/CTheMsgHnd.h"

namespace VemoKesConfigTools {

void Report(const char* function, const Refusal& refusal, const std::string& subject) {
    constexpr std::int16_t ERROR_DATA = 0;
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
    handler.SetErrorMsg(ERROR_DATA, subject.empty() ? refusal.what() : subject + ": " + refusal.what());
    handler.ModifyErrorMsg(ERROR_DATA, std::string(refusal.Text()), CMessageHandler::GROUP_ANY);
}

}  // namespace VemoKesConfigTools
