// check_text FILE.ktf: tells whether a configuration text is good for the first chip of the example database.
// How to build it stands in CMakeLists.txt.

#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "metadata/NetMetadataProvider.h"

#include <algorithm>
#include <iostream>

using namespace VEMO::Kes::ConfigurationTools;

namespace {

int Failed() {
    HostString reason;
    Framework::GetLastError(reason);
    std::string text = reason.ToNarrow();
    std::ranges::replace(text, '\r', '\n');  // the library parts the lines of a message with "\r"
    std::cerr << text << '\n';
    return 1;
}

int Check(const char* path) {
    const auto chips = NetMetadataProvider(DATABASE).GetChips();
    if (Framework::Error() || chips->empty()) return Failed();
    FrameworkFacade facade(DATABASE);
    facade.OwningChip(chips->front());
    if (!facade.LoadText(path, /*merge=*/false)) return Failed();
    std::cout << "good\n";
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: check_text FILE\n";
        return 2;
    }
    Framework::Init(PLUGIN_DIR);
    const int code = Check(argv[1]);
    Framework::Deinit();
    return code;
}
