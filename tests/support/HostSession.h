#pragma once

// Helpers shared by tests of the host API.

#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "messages/CTheMsgHnd.h"
#include "metadata/NetMetadataProvider.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>

namespace KesTest {

namespace host = VEMO::Kes::ConfigurationTools;

/// Number and text of the last stored error; "none" if there is none.
inline std::string LastError() {
    host::HostString message;
    const std::int32_t number = host::Framework::GetLastError(message);
    return host::Framework::Error() ? std::to_string(number) + " " + message.ToNarrow() : "none";
}

inline void ClearErrors() {
    using VemoKesConfigTools::CMessageHandler;
    VemoKesConfigTools::CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_KESTEXT, "test", false)
        .ClearError(CMessageHandler::GROUP_DEFAULT);
}

/// A chip of the shipped example.
inline std::shared_ptr<host::Chip> ChipOf(const std::string& label) {
    host::NetMetadataProvider provider(EXAMPLE_DATABASE);
    for (const auto& chip : provider.GetChips()) {
        if (chip->SystemVersionLabel() == host::HostString(label)) return chip;
    }
    return nullptr;
}

inline std::shared_ptr<host::Subsystem> SubsystemNamed(const char* name) {
    return std::make_shared<host::Subsystem>(name, "", "", "", "", "", "");
}

inline host::HostListRef<std::int32_t> Indexes(std::initializer_list<std::int32_t> indexes) {
    return std::make_shared<std::vector<std::int32_t>>(indexes);
}

/// The library, initialized with the real plug-ins.
class HostSession : public testing::Test {
protected:
    HostSession() {
        host::Framework::Init(KES_TEST_PLUGIN_DIR);
        ClearErrors();
    }
    ~HostSession() override { host::Framework::Deinit(); }
    TempFolder mFolder;
};

}  // namespace KesTest
