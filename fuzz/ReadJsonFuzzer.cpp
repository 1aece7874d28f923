// Any bytes as a JSON source of metadata. Each fault that is reported lies in the text, and what has none is
// written and read again without a change.

#include "metadb/JsonSource.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

using namespace VemoKesConfigTools::metadb;

[[noreturn]] void Fault(const char* what) {
    std::fprintf(stderr, "FAULT: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<SystemData> systems;
    std::vector<SourceFault> faults;
    ReadJsonSource(text, 0, systems, faults);
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    for (const SourceFault& fault : faults) {
        if (fault.place.line == 0 || fault.place.line > lines || fault.place.column == 0)
            Fault("a fault outside the text");
    }
    if (!faults.empty()) return 0;
    const std::string written = WriteJsonSource(systems);
    std::vector<SystemData> again;
    ReadJsonSource(written, 0, again, faults);
    if (!faults.empty()) Fault("the written source is refused");
    if (WriteJsonSource(again) != written) Fault("another source");
    return 0;
}
