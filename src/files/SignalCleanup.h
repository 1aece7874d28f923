#pragma once

#include "messages/Export.h"

#include <memory>
#include <string>

namespace VemoKesConfigTools::files {

/// From now on SIGINT, SIGTERM and SIGHUP remove the temporary files of the process before they end it. For
/// programs: a library leaves signals to its host.
KES_API void RemoveTemporariesOnSignals();

/// A file that these signals are to remove.
void AddForCleanup(const std::string& path);
void RemoveFromCleanup(const std::string& path);

/// Holds these signals back for as long as it lives, so that a file cannot be made and stay unknown.
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
