// Prints which database and plug-ins the command would take without options.

#include "cli/Globals.h"

#include <cstdlib>
#include <iostream>

int main() {
    const kes::cli::Globals globals = kes::cli::DefaultGlobals();
    std::cout << globals.database << '\n' << globals.plugins << '\n' << globals.chip << std::endl;
    // Without the handlers at exit: the leak checker fails in a process that may not be traced, as a set-uid
    // one.
    std::_Exit(0);
}
