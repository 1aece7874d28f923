// keylist_test DATABASE PLUGIN_FOLDER...: loads the plug-ins, reads two small texts with "KeyList" into a
// configuration, and says which expectation failed. Exit code 0 when all hold.

#include "messages/CTheMsgHnd.h"
#include "model/CChipConfig.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CReaderWriterFactory.h"
#include "model/IConfigReader.h"
#include "model/IMetadataProvider.h"

#include <iostream>
#include <memory>
#include <sstream>

using namespace VemoKesConfigTools;

namespace {

constexpr std::string_view SYSTEM = "ostrell_205_1_1";
constexpr std::uint32_t PROVISION_TIMEOUT = 20498;  // nfc, 1 to 600

int failures = 0;

template <typename Value, typename Expected>
void Expect(const char* what, const Value& value, const Expected& expected) {
    if (value == expected) return;
    std::cerr << what << ": \"" << value << "\", expected \"" << expected << "\"\n";
    ++failures;
}

bool Read(const char* text, IMetadataProvider& provider, CChipConfig& config) {
    std::stringstream stream(text);
    auto* argument = static_cast<std::iostream*>(&stream);
    const std::unique_ptr<IConfigReader> reader(
        CReaderWriterFactory::Ref().CreateReader("KeyList", "", argument));
    if (reader == nullptr) return false;
    reader->SetObserver(&config);
    reader->SetMetadataProvider(&provider);
    CKesContext context;
    context.SetChip(SYSTEM);
    return reader->Read(context);
}

std::string LastError() {
    std::int16_t number = 0;
    std::string text;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    CTheMsgHnd::GetAppropriateHandler(group, "LastError", false).LastError(number, text, group);
    return text;
}

std::string Timeout(const CChipConfig& config) {
    CKesContext place;
    place.SetSubsystemType(SUBSYSTEM_NFC);
    const CElement& element = config.Element(PROVISION_TIMEOUT, place);
    return element.IsValid() ? element.Payloads().front()->ToString() : "none";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: keylist_test DATABASE PLUGIN_FOLDER...\n";
        return 2;
    }
    for (int i = 2; i < argc; ++i) {
        CMetadataProviderFactory::Ref().Load(argv[i]);
        CReaderWriterFactory::Ref().Load(argv[i]);
    }
    const std::unique_ptr<IMetadataProvider> provider(
        CMetadataProviderFactory::Ref().Create("sqlite", argv[1]));
    if (provider == nullptr) {
        std::cerr << "no metadata provider in the plug-in folders\n";
        return 1;
    }
    {
        CChipConfig config;
        Expect("good text", Read("# one key\n5 15 1 20498 300\n", *provider, config), true);
        Expect("message of a good text", LastError(), "");
        Expect("value of a good text", Timeout(config), "300");

        const bool good = Read("5 15 1 20498 601\n5 15 1 20498 45\n5 15 1 1 2 3\n", *provider, config);
        Expect("text with mistakes", good, false);
        Expect("message of a text with mistakes", LastError(),
               "line 1: provision_timeout must be between 1 and 600\nline 3: five numbers expected");
        Expect("value between two mistakes", Timeout(config), "45");
    }
    if (failures == 0) std::cout << "KeyList reads\n";
    return failures == 0 ? 0 : 1;
}
