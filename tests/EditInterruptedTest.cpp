// A change of a text that is ended at any moment leaves the old text or the new one.

#include "support/Files.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace KesTest;

namespace {

/// Runs the command under the eyes of the system's tracing, and ends it at one of its calls that change
/// files.
class Interrupted {
public:
    enum class Moment { Entry, Exit };
    static constexpr std::size_t NEVER = 0;

    /// `number` counts such calls from 1.
    Interrupted(std::vector<std::string> words, std::size_t number, Moment moment)
        : mNumber(number), mMoment(moment) {
        words.insert(words.begin(), KES_TEST_COMMAND);
        const pid_t child = fork();
        if (child == 0) BecomeCommand(words);
        int status = 0;
        waitpid(child, &status, 0);
        constexpr long OPTIONS = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACECLONE |
                                 PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK;
        if (!WIFSTOPPED(status) || ptrace(PTRACE_SETOPTIONS, child, nullptr, OPTIONS) != 0) {
            refusal = "tracing is not permitted: " + std::string(std::strerror(errno));
            if (WIFSTOPPED(status)) kill(child, SIGKILL);
            return;
        }
        Follow(child);
    }

    std::string refusal;  ///< why nothing could be traced
    std::size_t calls = 0;
    std::set<long> kinds;
    bool ended = false;  ///< at the call that was asked for
    int code = -1;

private:
    [[noreturn]] static void BecomeCommand(const std::vector<std::string>& words) {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const char* options = std::getenv("ASAN_OPTIONS");
        // The search for leaks traces too, and there can be one tracer only.
        setenv("ASAN_OPTIONS", (std::string(options == nullptr ? "" : options) + ":detect_leaks=0").c_str(),
               1);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0) _exit(99);
        execv(arguments[0], arguments.data());
        _exit(98);
    }

    void Follow(pid_t child) {
        ptrace(PTRACE_SYSCALL, child, nullptr, 0);
        for (int status = 0;;) {
            const pid_t stopped = waitpid(-1, &status, __WALL);
            if (stopped < 0) return;
            if (!WIFSTOPPED(status)) {
                if (stopped == child) code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
                continue;
            }
            const int signal = WSTOPSIG(status);
            if (signal == (SIGTRAP | 0x80) && !ended && IsTheMoment(stopped)) {
                ended = true;
                kill(child, SIGKILL);
                continue;
            }
            const bool ours = signal == (SIGTRAP | 0x80) || signal == SIGTRAP || signal == SIGSTOP;
            ptrace(PTRACE_SYSCALL, stopped, nullptr, ours ? 0L : static_cast<long>(signal));
        }
    }

    bool IsTheMoment(pid_t stopped) {
        __ptrace_syscall_info info{};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, stopped, sizeof info, &info) <= 0) return false;
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            mOpens = false;
            mInCall = Changes(static_cast<long>(info.entry.nr), info.entry.args);
            if (!mInCall) return false;
            kinds.insert(static_cast<long>(info.entry.nr));
            return ++calls == mNumber && mMoment == Moment::Entry;
        }
        if (info.op != PTRACE_SYSCALL_INFO_EXIT || !mInCall) return false;
        mInCall = false;
        if (mOpens && info.exit.rval >= 0) mWritten.insert(info.exit.rval);
        return calls == mNumber && mMoment == Moment::Exit;
    }

    template <typename Arguments>
    bool Changes(long number, const Arguments& arguments) {
        constexpr auto WRITING = static_cast<unsigned long>(O_WRONLY | O_RDWR | O_CREAT | O_TRUNC);
        static const std::set<long> changing = {
#ifdef SYS_rename
            SYS_rename,   SYS_unlink,    SYS_chmod,    SYS_chown,
#endif
            SYS_write,    SYS_writev,    SYS_pwrite64, SYS_renameat,       SYS_renameat2, SYS_unlinkat,
            SYS_truncate, SYS_ftruncate, SYS_fchmod,   SYS_fchmodat,       SYS_fchown,    SYS_fchownat,
            SYS_fsync,    SYS_fdatasync, SYS_sendfile, SYS_copy_file_range};
#ifdef SYS_open
        if (number == SYS_open) return mOpens = (arguments[1] & WRITING) != 0;
#endif
        if (number == SYS_openat) return mOpens = (arguments[2] & WRITING) != 0;
        if (number == SYS_close) return mWritten.erase(static_cast<long>(arguments[0])) != 0;
        return changing.contains(number);
    }

    std::size_t mNumber;
    Moment mMoment;
    bool mInCall = false;
    bool mOpens = false;
    std::set<long> mWritten;  ///< descriptors that are open for writing
};

TEST(EditInterrupted, LeavesTheOldTextOrTheNewOne) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers make system calls of their own, by the hundred thousand";
#endif
    const std::string before = ReadFile(EXAMPLE_FOLDER + "/headset.ktf");
    const std::string after = Replaced(before, "max_connections = 2", "max_connections = 3");
    ASSERT_NE(before, after);
    const std::string old = "# what was there before\n";
    for (const bool elsewhere : {false, true}) {
        const TempFolder folder;
        const std::string source = folder.Write("source", before);
        const std::string target = elsewhere ? folder / "target" : source;
        std::vector<std::string> words = {"set", source, "max_connections=3"};
        if (elsewhere) words.insert(words.end(), {"-o", target});
        const auto prepare = [&] {
            std::filesystem::remove_all(folder.Path());
            std::filesystem::create_directory(folder.Path());
            folder.Write("source", before);
            if (elsewhere) folder.Write("target", old);
            chmod(target.c_str(), 0600);
        };
        prepare();
        const Interrupted whole(words, Interrupted::NEVER, Interrupted::Moment::Entry);
        if (!whole.refusal.empty()) GTEST_SKIP() << whole.refusal;
        ASSERT_EQ(whole.code, 0);
        ASSERT_EQ(ReadFile(target), after);
        EXPECT_TRUE(whole.kinds.contains(SYS_pwrite64));
        EXPECT_TRUE(whole.kinds.contains(SYS_fsync)) << "what is renamed is on the disk before";
        ASSERT_GT(whole.calls, 6U);
        std::size_t kept = 0;
        std::size_t tried = 0;
        for (std::size_t call = 1; call <= whole.calls; ++call) {
            for (const auto moment : {Interrupted::Moment::Entry, Interrupted::Moment::Exit}) {
                prepare();
                const Interrupted run(words, call, moment);
                ++tried;
                const std::string where = "call " + std::to_string(call) + " of " +
                                          std::to_string(whole.calls) +
                                          (moment == Interrupted::Moment::Entry ? ", entry" : ", exit");
                ASSERT_TRUE(run.ended) << where;
                const std::string now = ReadFile(target);
                EXPECT_TRUE(now == (elsewhere ? old : before) || now == after) << where << "\n" << now;
                EXPECT_EQ(ReadFile(source), elsewhere || now != after ? before : after) << where;
                if (now != after) ++kept;
                for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
                    if (elsewhere && entry.path() == source) continue;
                    struct stat status {};
                    stat(entry.path().c_str(), &status);
                    // An empty file tells nothing.
                    EXPECT_TRUE((status.st_mode & 0077U) == 0 || status.st_size == 0)
                        << where << ": " << entry.path();
                }
            }
        }
        EXPECT_GT(2 * kept, tried) << "most is done before the new text takes its place";
        EXPECT_LT(kept, tried) << "the end of the last call has both";
    }
}

}  // namespace
