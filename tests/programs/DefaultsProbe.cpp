// Prints which database and plug-ins the command would take without options.

#include "cli/Globals.h"

#include <iostream>

int main() {
    const kes::cli::Globals globals = kes::cli::DefaultGlobals();
    std::cout << globals.database << '\n' << globals.plugins << '\n' << globals.chip << '\n';
    return 0;
}
