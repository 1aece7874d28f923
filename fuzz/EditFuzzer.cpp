// Any text: keys in it can be set, removed and added, and nothing but the change happens.

#include "FuzzFixture.h"
#include "support/EditLaw.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace KesFuzz;
    const Input input(data, size);
    EditLaw law(input.text, Keys(), input.chip,
                [&](const std::string& what, const std::string& edited, const std::string& wanted,
                    const std::string& actual) {
                    // Where a refused value ends cannot always be told: a quote that was not closed may hold
                    // what looks like a comment. Such a change is refused by its proof.
                    if (what == "mend") return;
                    if (what == "add" && !law.EndTakesALine()) return;
                    Fault(what + "\n" + input.text + "\n--- edited\n" + edited, wanted, actual);
                });
    if (law.HasStrayLines()) return 0;
    // Each change reads the whole text twice.
    constexpr std::size_t MOST_KEYS = 16;
    law.Check(1 + law.LineCount() / MOST_KEYS);
    return 0;
}
