#pragma once

#include "messages/Export.h"

#include <memory>
#include <string>

namespace VemoKesConfigTools::files {

/// Makes SIGINT, SIGTERM and SIGHUP remove the temporary files of the process before they end it. Called by
/// programs only: a library leaves signals to its host.
KES_API void RemoveTemporariesOnSignals();

/// Registers a file for removal by these signals.
void AddForCleanup(const std::string& path);
void RemoveFromCleanup(const std::string& path);

/// Blocks these signals during its lifetime, so that none arrives between the creation of a file and its
/// registration.
class SignalsHeld {
public:
    SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld();

private:
    struct Saved;
    std::unique_ptr<Saved> mpSaved;
};

}  // namespace VemoKesConfigTools::files
