// Prints which database and plug-ins the command uses without options.

#include "cli/Globals.h"

#include <cstdlib>
#include <iostream>

int main() {
    const kes::cli::Globals globals = kes::cli::DefaultGlobals();
    std::cout << globals.database << '\n' << globals.plugins << '\n' << globals.chip << std::endl;
    // Skips exit handlers: the leak checker fails in a process that cannot be traced, such as a set-user-id
    // one.
    std::_Exit(0);
}
