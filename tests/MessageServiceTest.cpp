// The message service: one store behind all handlers, observers, and the debug trace.

#include "messages/CDebugSentry.h"
#include "messages/CTheMsgHnd.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace VemoKesConfigTools;

namespace {

CMessageHandler& Handler(CMessageHandler::GroupEnum group) {
    return CTheMsgHnd::GetAppropriateHandler(group, "MessageServiceTest", false);
}

struct Recorder final : CMessageHandlerObserver {
    Recorder() { CTheMsgHnd::AddObserver(*this); }
    ~Recorder() override { CTheMsgHnd::RemoveObserver(*this); }
    void OnError(std::int16_t number, const std::string& text) override {
        lines.push_back("error " + std::to_string(number) + " " + text);
    }
    void OnStatus(std::int32_t level, const std::string& text) override {
        lines.push_back("status " + std::to_string(level) + " " + text);
    }
    void OnTrace(const std::string& line) override { lines.push_back(line); }
    std::vector<std::string> lines;
};

class MessageService : public testing::Test {
protected:
    MessageService() { general.ClearError(CMessageHandler::GROUP_DEFAULT); }
    ~MessageService() override {
        general.ClearError(CMessageHandler::GROUP_DEFAULT);
        CTheMsgHnd::ActivateDebug(false);
    }
    CMessageHandler& general = Handler(CMessageHandler::GROUP_DEFAULT);
    CMessageHandler& text = Handler(CMessageHandler::GROUP_KESTEXT);
};

TEST_F(MessageService, ErrorsOfAllHandlersShareOneStore) {
    std::int16_t number = 7;
    std::string message = "untouched";
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    EXPECT_FALSE(general.LastError(number, message, group));
    EXPECT_EQ(message, "untouched");
    EXPECT_EQ(number, 7);

    text.SetErrorMsg(0, "first");
    Handler(static_cast<CMessageHandler::GroupEnum>(55)).SetErrorMsg(1, "second");
    EXPECT_TRUE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
    ASSERT_TRUE(general.LastError(number, message, group));
    EXPECT_EQ(number, 1);
    EXPECT_EQ(message, "second");
    ASSERT_TRUE(text.LastError(number, message, group)) << "reading an error must not remove it";

    text.ModifyErrorMsg(0, "outer", CMessageHandler::GROUP_ANY);
    ASSERT_TRUE(general.LastError(number, message, group));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(message, "outer: second");

    text.ClearError(CMessageHandler::GROUP_DEFAULT);
    EXPECT_FALSE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
    EXPECT_FALSE(text.ModifyErrorMsg(0, "nothing to modify", CMessageHandler::GROUP_ANY));
}

TEST_F(MessageService, CountsErrorsAcrossClearing) {
    const std::uint64_t before = CTheMsgHnd::ErrorsEver();
    text.SetErrorMsg(0, "one");
    text.ClearError(CMessageHandler::GROUP_DEFAULT);
    EXPECT_EQ(CTheMsgHnd::ErrorsEver(), before + 1);
}

TEST_F(MessageService, StatusReportsReachObserversAndAreNoErrors) {
    Recorder recorder;
    CTheMsgHnd::AddObserver(recorder);  // a second time, which must not double the reports
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "No configuration data found");
    text.SetErrorMsg(1, "lost");
    EXPECT_EQ(recorder.lines,
              (std::vector<std::string>{"status 2 No configuration data found", "error 1 lost"}));
    general.ClearError(CMessageHandler::GROUP_DEFAULT);
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "again");
    EXPECT_FALSE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
}

TEST_F(MessageService, ParagraphStringIsCommonToAllHandlers) {
    EXPECT_EQ(text.GetParagraphString(), "\n");
    general.SetParagraphString("\r");
    EXPECT_EQ(text.GetParagraphString(), "\r");
    general.SetParagraphString("\n");
}

TEST_F(MessageService, SentriesTraceEntryAndResultInWords) {
    struct Coded {
        std::int32_t mCode = 12;
    };
    enum Kind { KIND_THREE = 3 };
    Recorder recorder;
    { const CDebugSentry silent(&text, 1, "file.cpp", "Silent"); }
    EXPECT_TRUE(recorder.lines.empty()) << "nothing may be traced while debug is off";

    CTheMsgHnd::ActivateDebug(true);
    const auto exitLine = [&](const auto& result) {
        recorder.lines.clear();
        { const CDebugSentryWithReturn sentry(&text, 1, "f.cpp", "Class::Op", &result); }
        EXPECT_EQ(recorder.lines.size(), 2U);
        const std::string line = recorder.lines.back();
        return line.substr(line.find("<-"), line.rfind(" (") - line.find("<-"));
    };
    EXPECT_EQ(exitLine(true), "<- Class::Op [returning true]");
    EXPECT_EQ(exitLine(false), "<- Class::Op [returning false]");
    EXPECT_EQ(exitLine(KIND_THREE), "<- Class::Op [returning 3]");
    EXPECT_EQ(exitLine(Coded()), "<- Class::Op [returning 12]");
    EXPECT_EQ(exitLine(std::uint32_t{4000000000U}), "<- Class::Op [returning 4000000000]");
    EXPECT_EQ(exitLine(std::string("abc")), "<- Class::Op [returning \"abc\"]");
    EXPECT_EQ(exitLine(std::wstring(L"wide")), "<- Class::Op [returning \"wide\"]");
}

}  // namespace
