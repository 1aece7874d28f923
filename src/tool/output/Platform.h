#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kes::tool {

/// The path of the running command, empty when the system does not tell it.
std::string ExecutablePath();

/// The value of a variable of the environment that names what to load. Empty when it is not set, and where
/// the command has other rights than the user who started it.
std::string TrustedVariable(const char* name);

/// Whether standard error is a terminal.
bool ErrorsGoToTerminal();

/// Whether standard output is a terminal.
bool OutputGoesToTerminal();

/// The number of processors that this process may use, at least 1.
std::size_t ProcessorCount();

/// One end of a connection of two processes, over which whole messages of any bytes go.
class Channel {
public:
    explicit Channel(int descriptor) : mDescriptor(descriptor) {}
    Channel(Channel&& other) noexcept;
    Channel& operator=(Channel&& other) noexcept;
    ~Channel();

    /// False when the other end is gone.
    bool Send(const std::string& message) const;
    /// Waits for a message. False when the other end is gone.
    bool Receive(std::string& message) const;
    int Descriptor() const { return mDescriptor; }

private:
    int mDescriptor;
};

/// A child process of this one's own code.
struct Worker {
    Channel channel;
    int process;
};

/// Starts a child that runs `body` on its end of a channel, and adds it to the workers. The child holds no
/// end of the others. False with `errno` set when the system has no room for it.
bool StartWorker(std::vector<Worker>& workers, const std::function<void(const Channel&)>& body);

/// Waits until one of the workers has sent something or is gone, and gives its place in the list.
std::size_t WaitForWorker(const std::vector<Worker>& workers);

/// Takes a worker out of the list and waits for its end, of which it tells in words: "was ended by signal 9
/// (Killed)".
std::string EndWorker(std::vector<Worker>& workers, std::size_t number);

}  // namespace kes::tool
