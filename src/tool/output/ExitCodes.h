#pragma once

#include <stdexcept>
#include <string>

namespace kes::tool {

/// What the command ends with. The numbers are part of its interface.
enum ExitCode : int {
    EXIT_FINE = 0,
    EXIT_FINDINGS = 1,  ///< the input has errors, two texts differ, or what was asked for is not there
    EXIT_USAGE = 2,     ///< the command was called wrongly
    EXIT_SYSTEM = 3,    ///< a file, database or plug-in failed
    EXIT_EMPTY = 4      ///< a key that was asked for is there, but empty
};

/// Ends the command with a message and an exit code.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), mCode(code) {}
    ExitCode Code() const { return mCode; }

private:
    ExitCode mCode;
};

}  // namespace kes::tool
