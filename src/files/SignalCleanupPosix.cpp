#include "files/SignalCleanup.h"

#include <csignal>
#include <memory>
#include <mutex>
#include <unistd.h>
#include <utility>

namespace VemoKesConfigTools::files {

namespace {

constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

/// The files to remove, as a list that a signal handler can walk: it is changed only while the signals are
/// blocked.
struct Node {
    std::string path;
    std::unique_ptr<Node> next;
};

struct Cleanup {
    std::mutex mutex;
    std::unique_ptr<Node> first;
};

Cleanup& Files() {
    // Never destroyed: a signal may arrive at any time, also during exit.
    static Cleanup& files = *new Cleanup;
    return files;
}

// The handler's view of the list. A handler may neither take the mutex nor initialise a local static.
Node* gpFirst = nullptr;

extern "C" void RemoveAndEnd(int signal) {
    for (const Node* node = gpFirst; node != nullptr; node = node->next.get())
        static_cast<void>(unlink(node->path.c_str()));
    // SA_RESETHAND has restored the default action, so this ends the process.
    raise(signal);
}

}  // namespace

struct SignalsHeld::Saved {
    sigset_t signals;
};

SignalsHeld::SignalsHeld() : mpSaved(std::make_unique<Saved>()) {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : SIGNALS) sigaddset(&held, signal);
    pthread_sigmask(SIG_BLOCK, &held, &mpSaved->signals);
}

SignalsHeld::~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &mpSaved->signals, nullptr); }

void AddForCleanup(const std::string& path) {
    const SignalsHeld held;
    Cleanup& files = Files();
    const std::lock_guard guard(files.mutex);
    files.first = std::make_unique<Node>(Node{path, std::move(files.first)});
    gpFirst = files.first.get();
}

void RemoveFromCleanup(const std::string& path) {
    const SignalsHeld held;
    Cleanup& files = Files();
    const std::lock_guard guard(files.mutex);
    for (std::unique_ptr<Node>* at = &files.first; *at; at = &(*at)->next) {
        if ((*at)->path != path) continue;
        *at = std::move((*at)->next);
        break;
    }
    gpFirst = files.first.get();
}

void RemoveTemporariesOnSignals() {
    struct sigaction action {};
    action.sa_handler = RemoveAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int signal : SIGNALS) {
        struct sigaction before {};
        // A signal that the parent has set to be ignored, as nohup does, stays ignored.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) continue;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace VemoKesConfigTools::files
