#include "tool/config/ConfigWriter.h"

#include "facade/Framework.h"
#include "tool/config/Comments.h"

#include <set>

namespace kes::tool {

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

api::HostString ConfigWriter::RenderText(std::string& text, const api::TextForm& form) {
    text = SaveText(form);
    api::FrameworkFacade again(mSettings.database);
    again.OwningChip(mLoader.Chip());
    again.LoadTextFromMemory(text, /*merge=*/false);
    return mLoader.Facade().FirstDifference(again);
}

ExitCode ConfigWriter::ReplaceText(const ConfigInput& input, const OutputFile& output,
                                   const std::string& text, bool dropComments) {
    const TextFile* const before = input.Text();
    const bool isInput =
        before != nullptr && output.Before() && output.Before()->status.IsSameFile(before->File().status);
    if (!isInput) {
        output.Write(text);
        return EXIT_FINE;
    }
    if (before->Content() == text) return EXIT_FINE;
    const std::vector<std::string> lost = CommentsMissing(before->Content(), text);
    if (!lost.empty() && !dropComments) {
        mLoader.Messages().Report(input.Name(), "error",
                                  std::to_string(lost.size()) +
                                      (lost.size() == 1 ? " comment" : " comments") +
                                      " would be lost, the first of them \"" + lost.front() +
                                      "\"; nothing was written, --drop-comments allows it");
        return EXIT_FINDINGS;
    }
    output.Write(text, &before->File());
    return EXIT_FINE;
}

std::string ConfigWriter::AsText() {
    api::TextForm form;
    form.simple = true;
    form.readsBack = true;
    return SaveText(form);
}

std::string ConfigWriter::SaveText(const api::TextForm& form) {
    std::string text;
    if (mLoader.Facade().SaveTextToMemory(text, form)) return text;
    api::HostString message;
    api::Framework::GetLastError(message);
    throw Failure(EXIT_SYSTEM, Text(message));
}

ExitCode ConfigWriter::Save(const ConfigSource& target, const SaveOptions& options) {
    // What is there already counts where a save leaves some of it.
    const bool keeps = target.kind == ConfigKind::ISP || options.merge;
    api::FrameworkFacade expected(mSettings.database);
    if (keeps) {
        if (const ExitCode failed = Load(expected, target); failed != EXIT_FINE) return failed;
        if (target.kind == ConfigKind::ISP) RemoveSetsOf(mLoader.Facade(), expected);
        expected.LoadTextFromMemory(AsText(), /*merge=*/true);
    }
    const Listener listener;
    if (!SaveConfig(mLoader.Facade(), target, options) || !listener.OtherErrors().empty())
        return Report(target, listener);
    api::FrameworkFacade again(mSettings.database);
    if (const ExitCode failed = Load(again, target); failed != EXIT_FINE) return failed;
    const api::HostString difference = (keeps ? expected : mLoader.Facade()).FirstDifference(again);
    if (difference.IsNull()) return EXIT_FINE;
    mLoader.Messages().Report(
        target.word, "error",
        "was written, but does not read back as it was meant, first in " + Text(difference));
    return EXIT_SYSTEM;
}

ExitCode ConfigWriter::Load(api::FrameworkFacade& facade, const ConfigSource& source) {
    const ConfigInput input(source, InputAccess::PEEK, mSettings.lockWait);
    const Listener listener;
    facade.OwningChip(mLoader.Chip());
    if (input.Load(facade) && listener.OtherErrors().empty()) return EXIT_FINE;
    return Report(source, listener);
}

ExitCode ConfigWriter::Report(const ConfigSource& target, const Listener& listener) {
    for (const auto& [number, text] : listener.OtherErrors())
        mLoader.Messages().Report(target.word, "error", text);
    for (const std::string& status : listener.Statuses())
        mLoader.Messages().Report(target.word, "note", status);
    return ExitOf(listener.OtherErrors());
}

}  // namespace kes::tool
