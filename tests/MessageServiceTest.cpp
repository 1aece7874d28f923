// The message service: one store behind all handlers, observers, and the debug trace.

#include "messages/CDebugSentry.h"
#include "messages/CTheMsgHnd.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <thread>
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

TEST_F(MessageService, AModifiedErrorIsReportedAsSuch) {
    struct Watcher final : CMessageHandlerObserver {
        void OnError(std::int16_t number, const std::string& words) override {
            calls += "error " + std::to_string(number) + " " + words + ";";
        }
        void OnErrorModified(std::int16_t number, const std::string& words) override {
            calls += "modified " + std::to_string(number) + " " + words + ";";
        }
        std::string calls;
    } watcher;
    CTheMsgHnd::AddObserver(watcher);
    text.SetErrorMsg(1, "file");
    text.ModifyErrorMsg(0, "cannot open", CMessageHandler::GROUP_ANY);
    CTheMsgHnd::RemoveObserver(watcher);
    EXPECT_EQ(watcher.calls, "error 1 file;modified 0 cannot open: file;");
}

TEST_F(MessageService, TheNewestErrorsAreKeptAndTheOthersCounted) {
    for (int i = 1; i <= 2500; ++i) text.SetErrorMsg(0, "error " + std::to_string(i));
    std::uint64_t dropped = 0;
    std::vector<std::string> kept = CTheMsgHnd::KeptErrors(dropped);
    ASSERT_EQ(kept.size(), 1000U);
    EXPECT_EQ(dropped, 1500U);
    EXPECT_EQ(kept.front(), "error 1501");
    EXPECT_EQ(kept.back(), "error 2500");
    EXPECT_TRUE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
    general.ClearError(CMessageHandler::GROUP_DEFAULT);
    EXPECT_FALSE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
    kept = CTheMsgHnd::KeptErrors(dropped);
    EXPECT_TRUE(kept.empty() && dropped == 0);
}

/// Reports from several threads while an observer is repeatedly created, removed and destroyed.
TEST_F(MessageService, NoCallReachesAnObserverThatWasRemoved) {
    struct Fragile final : CMessageHandlerObserver {
        explicit Fragile(std::atomic<int>& late) : mLate(late) { CTheMsgHnd::AddObserver(*this); }
        ~Fragile() override {
            CTheMsgHnd::RemoveObserver(*this);
            mGone = true;
        }
        void OnStatus(std::int32_t /*level*/, const std::string& /*text*/) override {
            for (int i = 0; i < 50; ++i) {
                if (mGone) ++mLate;
                std::this_thread::yield();
            }
        }
        std::atomic<int>& mLate;
        std::atomic<bool> mGone = false;
    };
    std::atomic<bool> stop = false;
    std::atomic<int> late = 0;
    std::vector<std::thread> reporters;
    for (int i = 0; i < 3; ++i) {
        reporters.emplace_back([&] {
            while (!stop) text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "busy");
        });
    }
    for (int round = 0; round < 300; ++round) {
        alignas(Fragile) std::byte place[sizeof(Fragile)];
        auto* observer = new (place) Fragile(late);
        for (int i = 0; i < 20; ++i) std::this_thread::yield();
        observer->~Fragile();
    }
    stop = true;
    for (std::thread& reporter : reporters) reporter.join();
    EXPECT_EQ(late, 0);
}

TEST_F(MessageService, AnObserverMayRemoveItselfFromWithinItsCallOnSeveralThreads) {
    struct Once final : CMessageHandlerObserver {
        void OnStatus(std::int32_t /*level*/, const std::string& /*text*/) override {
            ++calls;
            while (calls < 2) std::this_thread::yield();
            CTheMsgHnd::RemoveObserver(*this);
        }
        std::atomic<int> calls = 0;
    } once;
    CTheMsgHnd::AddObserver(once);
    std::thread other([&] { text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "one"); });
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "two");
    other.join();
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "three");
    EXPECT_EQ(once.calls, 2);
}

/// Ends the process with 0 if the service still works in a destructor that runs after those of its statics.
struct LastToGo final : CMessageHandlerObserver {
    ~LastToGo() override {
        CMessageHandler& handler = Handler(CMessageHandler::GROUP_DEFAULT);
        const bool kept = handler.IsErrorSet(CMessageHandler::GROUP_ANY, true);
        handler.SetErrorMsg(1, "reported at the very end of the process");
        CTheMsgHnd::RemoveObserver(*this);
        handler.SetErrorMsg(1, "after it was removed");
        std::uint64_t dropped = 0;
        const std::vector<std::string> errors = CTheMsgHnd::KeptErrors(dropped);
        std::_Exit(kept && mHeard == 1 && errors.size() == 2002 - dropped ? 0 : 1);
    }
    void OnError(std::int16_t /*number*/, const std::string& /*text*/) override { ++mHeard; }
    int mHeard = 0;
};

TEST(MessageServiceAtExit, AGlobalObserverStillFindsTheService) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static LastToGo last;  // constructed before the service, hence destroyed after it
            CMessageHandler& handler = Handler(CMessageHandler::GROUP_DEFAULT);
            for (int i = 0; i < 2000; ++i) handler.SetErrorMsg(0, "an error with a long text, to be kept");
            CTheMsgHnd::AddObserver(last);
            std::exit(3);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(MessageService, CountsErrorsAcrossClearing) {
    const std::uint64_t before = CTheMsgHnd::ErrorsEver();
    text.SetErrorMsg(0, "one");
    text.ClearError(CMessageHandler::GROUP_DEFAULT);
    EXPECT_EQ(CTheMsgHnd::ErrorsEver(), before + 1);
}

TEST_F(MessageService, StatusReportsReachObserversAndAreNotErrors) {
    Recorder recorder;
    CTheMsgHnd::AddObserver(recorder);  // adding it again must not duplicate the reports
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "No configuration data found");
    text.SetErrorMsg(1, "lost");
    EXPECT_EQ(recorder.lines,
              (std::vector<std::string>{"status 2 No configuration data found", "error 1 lost"}));
    general.ClearError(CMessageHandler::GROUP_DEFAULT);
    text.NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, "again");
    EXPECT_FALSE(general.IsErrorSet(CMessageHandler::GROUP_ANY, true));
}

TEST_F(MessageService, ParagraphStringIsSharedByAllHandlers) {
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
