#include "tool/keys/Session.h"

#include "facade/Framework.h"
#include "messages/CTheMsgHnd.h"
#include "tool/keys/Listener.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"

#include <algorithm>

namespace kes::tool {

namespace {

void ClearErrors() {
    using VemoKesConfigTools::CMessageHandler;
    VemoKesConfigTools::CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "kes", false)
        .ClearError(CMessageHandler::GROUP_DEFAULT);
}

}  // namespace

std::string Text(const api::HostString& text) { return text.ToNarrow(); }

Session::Session(const Settings& settings) : mDatabase(settings.database) {
    const Listener listener;
    CheckUtf8(settings.database);
    CheckUtf8(settings.plugins);
    api::Framework::Init(settings.plugins);
    mMetadata.emplace(settings.database);
    api::HostString message;
    if (api::Framework::GetLastError(message) == 1) {
        std::string text = "no plug-in \"sqlite\" in " + settings.plugins +
                           "; choose the folder with --plugins or KES_PLUGINS";
        for (const std::string& leftOut : listener.Statuses()) text.append("\nnote: ").append(leftOut);
        throw Failure(EXIT_SYSTEM, text);
    }
    FailOnError();
    mChips = *mMetadata->GetChips();
    FailOnError();
    if (mChips.empty()) throw Failure(EXIT_SYSTEM, mDatabase + ": the database has no chip");
}

Session::~Session() {
    mMetadata.reset();
    api::Framework::Deinit();
}

void Session::FailOnError() const {
    if (!api::Framework::Error()) return;
    api::HostString message;
    api::Framework::GetLastError(message);
    throw Failure(EXIT_SYSTEM, Text(message) + "\nchoose the database with --db or KES_DB");
}

std::shared_ptr<api::Chip> Session::TryChip(const std::string& label) const {
    const auto found = std::ranges::find_if(
        mChips, [&](const auto& chip) { return Text(chip->SystemVersionLabel()) == label; });
    return found == mChips.end() ? nullptr : *found;
}

std::shared_ptr<api::Chip> Session::FindChip(const std::string& label) const {
    if (label.empty()) return mChips.front();
    if (std::shared_ptr<api::Chip> chip = TryChip(label)) return chip;
    std::vector<std::string> labels;
    std::string list;
    for (const auto& chip : mChips) {
        labels.push_back(Text(chip->SystemVersionLabel()));
        list += "\n  " + labels.back();
    }
    const std::string near = DidYouMean(label, labels);
    throw Failure(EXIT_USAGE, "unknown chip \"" + label + "\"" + (near.empty() ? "" : ", " + near) + "\n" +
                                  mDatabase + " has:" + list);
}

std::vector<std::shared_ptr<api::Subsystem>> Session::Subsystems(const api::Chip& chip) {
    return *mMetadata->GetSubsystems(chip.SystemVersionLabel());
}

std::vector<std::shared_ptr<api::Metadata>> Session::Keys(const api::Chip& chip,
                                                          const api::Subsystem& subsystem) {
    ClearErrors();
    const auto map = mMetadata->GetMetadatas(chip.SystemVersionLabel(), "", subsystem.Type());
    FailOnError();
    std::vector<std::shared_ptr<api::Metadata>> keys;
    for (const auto& [uid, key] : map) keys.push_back(key);
    std::ranges::stable_sort(keys, {},
                             [](const auto& key) { return static_cast<std::uint32_t>(key->Psid()); });
    return keys;
}

std::shared_ptr<api::Metadata> Session::FindKey(const api::Chip& chip, const api::Subsystem& subsystem,
                                                const std::string& name,
                                                std::optional<std::uint32_t> number) {
    // Questions about keys fail while any error is stored, that of a text for one.
    ClearErrors();
    auto key = number ? mMetadata->GetMetadataByPsid(chip.SystemVersionLabel(), subsystem.Type(),
                                                     static_cast<std::int32_t>(*number))
                      : mMetadata->GetMetadataByName(chip.SystemVersionLabel(), subsystem.Type(), name);
    FailOnError();
    return key;
}

void Session::LoadDetails(const api::Chip& chip, const std::shared_ptr<api::Subsystem>& subsystem,
                          const std::shared_ptr<api::Metadata>& key) {
    if (key->Details()) return;
    ClearErrors();
    // Details are those of the chip of the last listing.
    Subsystems(chip);
    mMetadata->GetMetadataDetails(subsystem, key);
    FailOnError();
}

std::vector<std::string> Session::KeyNames(const api::Chip& chip) {
    std::vector<std::string> names;
    for (const auto& subsystem : Subsystems(chip)) {
        for (const auto& key : Keys(chip, *subsystem)) names.push_back(Text(key->Name()));
    }
    return names;
}

void CheckUtf8(const std::string& path) {
    if (api::HostString(path).ToNarrow() == path) return;
    throw Failure(EXIT_USAGE, path + ": is not UTF-8, as the path of a folder, device or database has to be");
}

}  // namespace kes::tool
