// list_keys [SYSTEM SUBSYSTEM]: lists the chips of the example database, or the keys of one subsystem with
// their numbers. How to build it stands in the Makefile.

#include "facade/Framework.h"
#include "metadata/NetMetadataProvider.h"

#include <iostream>

using namespace VEMO::Kes::ConfigurationTools;

namespace {

int Failed() {
    HostString reason;
    Framework::GetLastError(reason);
    std::cerr << reason << '\n';
    return 1;
}

int ListChips(NetMetadataProvider& metadata) {
    const auto chips = metadata.GetChips();
    if (Framework::Error()) return Failed();
    for (const auto& chip : *chips) std::cout << chip->SystemVersionLabel() << ' ' << chip->Name() << '\n';
    return 0;
}

int ListKeys(NetMetadataProvider& metadata, const HostString& system, const HostString& name) {
    const auto subsystems = metadata.GetSubsystems(system);
    if (Framework::Error()) return Failed();
    for (const auto& subsystem : *subsystems) {
        if (subsystem->Name() != name) continue;
        const auto keys = metadata.GetMetadatas(system, "", subsystem->Type());
        if (Framework::Error()) return Failed();
        for (const auto& [uid, key] : *keys) std::cout << key->Psid() << ' ' << key->Name() << '\n';
        return 0;
    }
    std::cerr << system << " has no subsystem " << name << '\n';
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 1 && argc != 3) {
        std::cerr << "usage: list_keys [SYSTEM SUBSYSTEM]\n";
        return 2;
    }
    Framework::Init(PLUGIN_DIR);
    int code = 0;
    {
        NetMetadataProvider metadata(DATABASE);
        code = argc == 1 ? ListChips(metadata) : ListKeys(metadata, argv[1], argv[2]);
    }
    Framework::Deinit();
    return code;
}
