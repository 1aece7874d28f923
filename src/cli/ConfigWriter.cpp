#include "cli/ConfigWriter.h"

#include "cli/Scratch.h"
#include "cli/TextFile.h"
#include "facade/Framework.h"

#include <set>

namespace kes::cli {

namespace {

/// The store set of the family isp that has a device.
std::int32_t StoreSetOf(std::int32_t device) {
    const bool isOwn = device == api::DEVICE_TYPE_CUR_CFG || device == api::DEVICE_TYPE_FW_CFG;
    return isOwn ? device : api::DEVICE_TYPE_DEV_CFG;
}

/// Takes all keys out of a configuration whose store set another one has a place in.
void RemoveSetsOf(api::FrameworkFacade& other, api::FrameworkFacade& facade) {
    std::set<std::int32_t> sets;
    for (const auto& place : other.GetPlaces()) sets.insert(StoreSetOf(place->DeviceId()));
    for (const auto& value : facade.GetValues()) {
        if (!sets.contains(StoreSetOf(value->DeviceId()))) continue;
        const auto subsystem = std::make_shared<api::Subsystem>(
            api::Subsystem::NameOf(value->SubsystemType()), "", "", "", "", "", "");
        facade.RemoveValue(subsystem, value->Psid(),
                           std::make_shared<api::KeyValue::IndexList>(value->Indexes()), value->DeviceId(),
                           value->StoreId());
    }
}

}  // namespace

api::HostString ConfigWriter::WriteText(const std::string& path, const api::TextForm& form) {
    SaveText(path, form);
    api::FrameworkFacade again(mGlobals.database);
    again.OwningChip(mLoader.Chip());
    again.LoadText(path, /*merge=*/false);
    return mLoader.Facade().FirstDifference(again);
}

std::string ConfigWriter::AsText() {
    api::TextForm form;
    form.simple = true;
    form.readsBack = true;
    const Scratch text({});
    SaveText(text.Path(), form);
    return ReadWhole(text.Path());
}

void ConfigWriter::SaveText(const std::string& path, const api::TextForm& form) {
    if (mLoader.Facade().SaveText(path, form)) return;
    api::HostString message;
    api::Framework::GetLastError(message);
    throw Failure(EXIT_SYSTEM, Text(message));
}

ExitCode ConfigWriter::Save(const ConfigSource& target, const SaveOptions& options) {
    // What is there already counts where a save leaves some of it.
    const bool keeps = target.kind == ConfigKind::ISP || options.merge;
    api::FrameworkFacade expected(mGlobals.database);
    if (keeps) {
        if (const ExitCode failed = Load(expected, target); failed != EXIT_FINE) return failed;
        if (target.kind == ConfigKind::ISP) RemoveSetsOf(mLoader.Facade(), expected);
        const Scratch text(AsText());
        expected.LoadText(text.Path(), /*merge=*/true);
    }
    const Listener listener;
    if (!SaveConfig(mLoader.Facade(), target, options) || !listener.OtherErrors().empty())
        return Report(target, listener);
    api::FrameworkFacade again(mGlobals.database);
    if (const ExitCode failed = Load(again, target); failed != EXIT_FINE) return failed;
    const api::HostString difference = (keeps ? expected : mLoader.Facade()).FirstDifference(again);
    if (difference.IsNull()) return EXIT_FINE;
    mLoader.Messages().Report(
        target.word, "error",
        "was written, but does not read back as it was meant, first in " + Text(difference));
    return EXIT_SYSTEM;
}

ExitCode ConfigWriter::Load(api::FrameworkFacade& facade, const ConfigSource& source) {
    const Listener listener;
    facade.OwningChip(mLoader.Chip());
    if (LoadConfig(facade, source) && listener.OtherErrors().empty()) return EXIT_FINE;
    return Report(source, listener);
}

ExitCode ConfigWriter::Report(const ConfigSource& target, const Listener& listener) {
    for (const auto& [number, text] : listener.OtherErrors())
        mLoader.Messages().Report(target.word, "error", text);
    for (const std::string& status : listener.Statuses())
        mLoader.Messages().Report(target.word, "note", status);
    return ExitOf(listener.OtherErrors());
}

}  // namespace kes::cli
