#include "facade/Framework.h"

#include "messages/CTheMsgHnd.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

#define KES_FRAMEWORK_FUNCTION(name) "VEMO::Kes::ConfigurationTools::Framework::" name

void TraceEntry(const char* function) {
    CTheMsgHnd::Instance();
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, function, true);
}

CMessageHandler& DefaultHandler(const char* function) {
    CTheMsgHnd::Instance();
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
}

}  // namespace

void Framework::Init(const HostString& pluginDir) {
    constexpr const char* FUNCTION = KES_FRAMEWORK_FUNCTION("Init");
    TraceEntry(FUNCTION);
    const std::string folder = GetString(pluginDir);
    CMetadataProviderFactory::Ref().Load(folder);
    CReaderWriterFactory::Ref().Load(folder);
    DefaultHandler(FUNCTION).SetParagraphString("\r");
}

void Framework::Deinit() {
    TraceEntry(KES_FRAMEWORK_FUNCTION("Deinit"));
    CMetadataProviderFactory::Ref().Release();
}

bool Framework::Error() {
    constexpr const char* FUNCTION = KES_FRAMEWORK_FUNCTION("Error");
    TraceEntry(FUNCTION);
    return DefaultHandler(FUNCTION).IsErrorSet(CMessageHandler::GROUP_ANY, true);
}

std::int32_t Framework::GetLastError(HostString& ErrorMsg) {
    constexpr const char* FUNCTION = KES_FRAMEWORK_FUNCTION("GetLastError");
    TraceEntry(FUNCTION);
    std::string message;
    std::int16_t number = 0;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    const bool stored = DefaultHandler(FUNCTION).LastError(number, message, group);
    ErrorMsg = HostString(message);
    return stored ? number : 0;
}

std::string Framework::GetString(const HostString& value) {
    TraceEntry(KES_FRAMEWORK_FUNCTION("GetString"));
    return value.ToNarrow();
}

}  // namespace VEMO::Kes::ConfigurationTools
