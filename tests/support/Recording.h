#pragma once

// Shared by tests of binary files and devices: a host with recording plug-ins in their place.

#include "support/HostSession.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

namespace KesTest {

inline constexpr std::int32_t MAX_ACL_LINKS = 0x1005;
inline constexpr std::int32_t LOCAL_NAME = 0x1002;
inline constexpr const char* LABEL = "ostrell_520_2_3";

/// A facade with two keys, local_name and max_acl_links = 5, and a stored error.
class RecordedSession : public testing::Test {
protected:
    /// An operation and its observable results.
    struct Row {
        std::function<bool(host::FrameworkFacade&)> run;
        bool good;
        std::string error;  ///< from `LastError`
        std::string keys;   ///< from `Keys`
        std::string calls;  ///< of the plug-in, one per line
    };

    RecordedSession() {
        setenv("KES_RECORDING_LOG", (mFolder / "calls").c_str(), /*replace=*/1);
        // Of two plug-ins with the same name, the first is kept.
        host::Framework::Init(std::string(KES_TEST_BINARY_DIR) + "/tests/recording");
        host::Framework::Init(KES_TEST_PLUGIN_DIR);
        mFacade = std::make_unique<host::FrameworkFacade>(EXAMPLE_DATABASE);
        Prepare();
    }
    ~RecordedSession() override {
        mFacade.reset();
        host::Framework::Deinit();
    }

    void Prepare() {
        mFacade->OwningChip(ChipOf(LABEL));
        const auto bt = SubsystemNamed("bt");
        EXPECT_TRUE(mFacade->SetValue(bt, LOCAL_NAME, nullptr, 2, 1, 1, "\"car\"")) << LastError();
        EXPECT_TRUE(mFacade->SetValue(bt, MAX_ACL_LINKS, nullptr, 2, 1, 1, "5")) << LastError();
        StoreError("left over");
        TakeCalls();
    }
    static void StoreError(const std::string& text) {
        using VemoKesConfigTools::CMessageHandler;
        VemoKesConfigTools::CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false)
            .SetErrorMsg(9, text);
    }
    std::string TakeCalls() {
        const std::string calls = ReadFile(mFolder / "calls");
        std::filesystem::remove(mFolder / "calls");
        return calls;
    }
    /// The keys with their values, followed by a bar and the defaults.
    std::string Keys() const {
        const auto text = [](const host::HostListRef<std::shared_ptr<host::KeyValue>>& values) {
            std::string all;
            for (const auto& value : values) {
                all += value->Name().ToNarrow() + "=" + value->Value().ToNarrow() + " ";
            }
            return all;
        };
        return text(mFacade->GetValues()) + "| " + text(mFacade->GetDefaultValues());
    }
    void Check(const Row& row) {
        Prepare();
        EXPECT_EQ(row.run(*mFacade), row.good) << row.calls;
        EXPECT_EQ(LastError(), row.error) << row.calls;
        EXPECT_EQ(TakeCalls(), row.calls);
        EXPECT_EQ(Keys(), row.keys) << row.calls;
    }

    TempFolder mFolder;
    std::unique_ptr<host::FrameworkFacade> mFacade;
};

}  // namespace KesTest
