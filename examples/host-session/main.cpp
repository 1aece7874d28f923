// host_session CHIP FILE.ktf NEW.ktf: a whole session of a host program. It loads a text for a chip,
// announces the device as another kind, tells what is not at its default, and saves. How to build it stands
// in CMakeLists.txt.

#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "metadata/NetMetadataProvider.h"

#include <algorithm>
#include <iostream>

using namespace VEMO::Kes::ConfigurationTools;

namespace {

/// Says what went wrong with the last operation, and is the exit code for it.
int Failed(const char* what) {
    HostString reason;
    Framework::GetLastError(reason);
    std::string text = reason.ToNarrow();
    std::ranges::replace(text, '\r', '\n');  // the library parts the lines of a message with "\r"
    std::cout << what << ": " << text << '\n';
    return 1;
}

/// The chip or subsystem of a name; null when there is none.
template <typename T>
std::shared_ptr<T> Find(const HostListRef<std::shared_ptr<T>>& all, const HostString& (T::*name)() const,
                        const HostString& wanted) {
    for (const auto& one : all) {
        if ((*one.*name)() == wanted) return one;
    }
    return nullptr;
}

/// Name or number of a key, with its indexes.
std::string KeyText(const KeyValue& key) {
    std::string text = key.Name().IsNull() ? std::to_string(key.Psid()) : key.Name().ToNarrow();
    for (const auto index : key.Indexes()) text += "." + std::to_string(index);
    return text;
}

/// Gives a key that the text has another value, in the place where it is.
bool Change(FrameworkFacade& facade, const std::shared_ptr<Subsystem>& subsystem, const KeyValue& key,
            const HostString& value) {
    return facade.SetValue(subsystem, key.Psid(), /*indexes=*/nullptr, key.DeviceId(), key.StoreId(),
                           LayerIndexVals::Minimum, value);
}

/// Compares the configuration with the defaults, which are loaded for each subsystem.
int TellWhatDiffers(FrameworkFacade& facade, const HostListRef<std::shared_ptr<Subsystem>>& subsystems) {
    if (!facade.ReloadKnownDefaults(subsystems)) return Failed("defaults");
    for (const auto& key : facade.GetValues()) {
        if (key->SubsystemType() != SUBSYSTEM_TYPE_BT || key->IsDefault()) continue;
        std::cout << "  " << KeyText(*key) << " = " << key->Value();
        if (!key->Default().IsNull()) std::cout << ", by default " << key->Default();
        std::cout << '\n';
    }
    return 0;
}

int RunSession(const HostString& label, const char* file, const char* newFile) {
    // What chips and keys there are.
    NetMetadataProvider metadata(DATABASE);
    const auto chips = metadata.GetChips();
    if (chips == nullptr) return Failed(DATABASE);
    const auto chip = Find<Chip>(chips, &Chip::SystemVersionLabel, label);
    if (!chip) {
        std::cout << "there is no chip " << label << '\n';
        return 1;
    }
    const auto subsystems = metadata.GetSubsystems(label);
    const auto bt = Find<Subsystem>(subsystems, &Subsystem::Name, "bt");
    const auto device = metadata.GetMetadataByName(label, SUBSYSTEM_TYPE_BT, "class_of_device");
    if (!bt || !device) {
        std::cout << label << " has no class_of_device\n";
        return 1;
    }

    // A configuration is always one of a chip, so that goes first.
    FrameworkFacade facade(DATABASE);
    facade.OwningChip(chip);
    if (!facade.LoadText(file, /*merge=*/false)) return Failed(file);

    // A key is in each of its places once.
    const auto values = facade.GetValues(bt, device->Psid(), /*indexes=*/nullptr);
    if (values->empty()) {
        std::cout << file << " has no class_of_device\n";
        return 1;
    }
    std::cout << "class_of_device was " << values->front()->Value() << '\n';

    // A value is what a text has behind "=". One that is refused changes nothing.
    if (!Change(facade, bt, *values->front(), "loudspeaker")) Failed("refused");
    if (!Change(facade, bt, *values->front(), "0x240414")) return Failed("class_of_device");
    // A key as the lines of a text, with its label.
    std::cout << "now" << facade.GetValue(bt, device->Psid(), nullptr, LayerIndexVals::Minimum);

    std::cout << "not at their defaults in bt:\n";
    if (TellWhatDiffers(facade, subsystems) != 0) return 1;
    std::cout << "the default is" << facade.GetDefault(bt, device->Psid(), nullptr);

    std::cout << "not known to the metadata:\n";
    for (const auto& [psid, record] : facade.GetPopulatedRawmodeMetadata(bt)) {
        std::cout << "  " << psid << ", " << record->Label() << '\n';
    }

    // Without `readsBack`, unknown keys would not read back, and texts would be octets.
    if (!facade.SaveText(newFile, TextForm{.simple = false, .readsBack = true})) return Failed(newFile);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: host_session CHIP FILE.ktf NEW.ktf\n";
        return 2;
    }
    Framework::Init(PLUGIN_DIR);
    // All facades and providers are gone when the session ends, before the library is stopped.
    const int code = RunSession(argv[1], argv[2], argv[3]);
    Framework::Deinit();
    return code;
}
