#include "tool/output/Platform.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace kes::tool {

std::string ExecutablePath() {
    std::error_code failed;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? std::string() : path.string();
}

std::string TrustedVariable(const char* name) {
    const char* value = secure_getenv(name);
    return value == nullptr ? std::string() : value;
}

bool ErrorsGoToTerminal() { return isatty(STDERR_FILENO) == 1; }

bool OutputGoesToTerminal() { return isatty(STDOUT_FILENO) == 1; }

std::size_t ProcessorCount() {
    cpu_set_t processors;
    CPU_ZERO(&processors);
    if (sched_getaffinity(0, sizeof processors, &processors) != 0) return 1;
    return static_cast<std::size_t>(std::max(CPU_COUNT(&processors), 1));
}

Channel::Channel(Channel&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}

Channel& Channel::operator=(Channel&& other) noexcept {
    std::swap(mDescriptor, other.mDescriptor);
    return *this;
}

Channel::~Channel() {
    if (mDescriptor >= 0) close(mDescriptor);
}

namespace {

bool SendAll(int descriptor, const char* from, std::size_t left) {
    while (left != 0) {
        // No signal: that the other end is gone is told by the result.
        const ssize_t sent = send(descriptor, from, left, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        from += sent;
        left -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool ReceiveAll(int descriptor, char* to, std::size_t left) {
    while (left != 0) {
        const ssize_t came = recv(descriptor, to, left, 0);
        if (came < 0 && errno == EINTR) continue;
        if (came <= 0) return false;
        to += came;
        left -= static_cast<std::size_t>(came);
    }
    return true;
}

}  // namespace

bool Channel::Send(const std::string& message) const {
    const std::uint64_t size = message.size();
    char head[sizeof size];
    std::memcpy(head, &size, sizeof size);
    return SendAll(mDescriptor, head, sizeof head) && SendAll(mDescriptor, message.data(), message.size());
}

bool Channel::Receive(std::string& message) const {
    std::uint64_t size = 0;
    char head[sizeof size];
    if (!ReceiveAll(mDescriptor, head, sizeof head)) return false;
    std::memcpy(&size, head, sizeof size);
    message.resize(size);
    return ReceiveAll(mDescriptor, message.data(), message.size());
}

bool StartWorker(std::vector<Worker>& workers, const std::function<void(const Channel&)>& body) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
    Channel ours(ends[0]);
    Channel theirs(ends[1]);
    const pid_t process = fork();
    if (process < 0) return false;
    if (process == 0) {
        // Nobody waits for a child whose parent was stopped.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        workers.clear();
        { const Channel closed(std::move(ours)); }
        body(theirs);
        // Nothing of the parent's is flushed or destroyed a second time.
        _exit(0);
    }
    workers.push_back({std::move(ours), process});
    return true;
}

std::size_t WaitForWorker(const std::vector<Worker>& workers) {
    std::vector<pollfd> watched;
    watched.reserve(workers.size());
    for (const Worker& worker : workers) watched.push_back({worker.channel.Descriptor(), POLLIN, 0});
    while (poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    const auto ready = std::ranges::find_if(watched, [](const pollfd& one) { return one.revents != 0; });
    return ready == watched.end() ? 0 : static_cast<std::size_t>(ready - watched.begin());
}

std::string EndWorker(std::vector<Worker>& workers, std::size_t number) {
    const pid_t process = workers[number].process;
    workers.erase(workers.begin() + static_cast<std::ptrdiff_t>(number));
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFSIGNALED(status)) return "ended with exit code " + std::to_string(WEXITSTATUS(status));
    const int signal = WTERMSIG(status);
    return "was ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
}

}  // namespace kes::tool
