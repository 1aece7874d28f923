// Any text: keys in it can be set, removed and added, and nothing but the change happens.

#include "FuzzFixture.h"
#include "support/EditLaw.h"

namespace {

using namespace KesFuzz;

/// Whether the end of the text takes no further line: it is inside a comment, or in the middle of a line,
/// which may be wrong in another way when it is complete.
bool EndIsOpen(const std::string& text) {
    return text.find("/*") != std::string::npos || !text.ends_with('\n');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input(data, size);
    EditLaw law(input.text, Keys(), input.chip,
                [&](const std::string& what, const std::string& edited, const std::string& wanted,
                    const std::string& actual) {
                    if (what == "add" && EndIsOpen(input.text)) return;
                    Fault(what + "\n" + input.text + "\n--- edited\n" + edited, wanted, actual);
                });
    if (law.HasStrayLines()) return 0;
    // Each change reads the whole text twice.
    constexpr std::size_t MOST_KEYS = 16;
    law.Check(1 + law.LineCount() / MOST_KEYS);
    return 0;
}
