#include "cli/TextEditor.h"

#include "cli/DeviceNames.h"
#include "cli/KeyList.h"
#include "cli/Listener.h"
#include "cli/Scratch.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"

#include <algorithm>
#include <utility>

namespace kes::cli {

namespace {

using VemoKesConfigTools::TextChange;
using VemoKesConfigTools::TextPlace;

// A text is read as it was, for its index, and as it is after the change.
constexpr std::uint64_t ROUNDS = 3;
constexpr std::int32_t LAYER = api::LayerIndexVals::Minimum;
constexpr std::int32_t FILE_STORE_FIRST = 1;
constexpr std::int32_t FILE_STORE_LAST = 15;

/// Whether a place is named by a "file" line.
bool IsFilePlace(const TextPlace& place) {
    return place.device == api::DEVICE_TYPE_EEPROM && place.store >= FILE_STORE_FIRST &&
           place.store <= FILE_STORE_LAST;
}

/// Whether the library sets single values there.
bool TakesSingleValues(const TextPlace& place) {
    return IsFilePlace(place) || place.device == api::DEVICE_TYPE_OTP ||
           place.device == api::DEVICE_TYPE_SMEM || place.device == api::DEVICE_TYPE_MTP;
}

std::string TextOf(const TextPlace& place) {
    return PlaceText(static_cast<api::SubsystemTypes>(place.subsystem), place.device, place.store);
}

/// How texts name a subsystem.
std::string WordOf(const api::Subsystem& subsystem) {
    return Text(subsystem.Alias().IsNullOrEmpty() ? subsystem.Name() : subsystem.Alias());
}

/// The words of an assignment whose text has lost its quotes to the shell, with quotes that stay; empty for
/// any other.
std::string QuotedForShell(std::int32_t finding, const Assignment& assignment) {
    // Of a value with any of these nobody can say where the quotes were.
    if (finding != VemoKesConfigTools::PE_MISSING_QUOTE ||
        assignment.value.find_first_of("\"'\\{") != std::string::npos)
        return {};
    return assignment.key.text + "='\"" + assignment.value + "\"'";
}

/// The first error of `after` that `before` does not have, in this order.
std::optional<std::size_t> FirstNew(const std::vector<std::string>& before,
                                    const std::vector<std::string>& after) {
    auto next = before.begin();
    for (std::size_t i = 0; i < after.size(); ++i) {
        next = std::find(next, before.end(), after[i]);
        if (next == before.end()) return i;
        ++next;
    }
    return std::nullopt;
}

}  // namespace

TextEditor::TextEditor(const Globals& globals, const TextFile& file, const PlaceOptions& place)
    : mGlobals(globals), mFile(file), mPlace(place), mLoader(globals), mBar(file.Size() * ROUNDS) {}

/// Shows how far the whole work is, of which a round is one reading of the text.
std::function<void(std::uint64_t)> TextEditor::Progress(std::uint64_t round) {
    return [this, before = mFile.Size() * round](std::uint64_t bytes) { mBar.Show(before + bytes); };
}

std::optional<std::string> TextEditor::Edit(EditKind kind, const std::vector<Assignment>& assignments) {
    if (!Load()) return std::nullopt;
    const PlaceFilter filter(mLoader.Library(), *mLoader.Chip(), mPlace);
    std::vector<Target> targets;
    std::vector<TextChange> changes;
    for (const Assignment& assignment : assignments) {
        targets.push_back(FindTarget(kind, filter, assignment.key));
        changes.push_back(ToTextChange(kind, targets.back(), assignment));
        const auto same = [&](const TextChange& other) {
            const TextChange& last = changes.back();
            return other.place == last.place && other.psid == last.psid && other.indices == last.indices;
        };
        if (std::any_of(changes.begin(), changes.end() - 1, same)) {
            throw Failure(EXIT_USAGE, assignment.key.text + " is given twice");
        }
    }
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        if (!Change(kind, targets[i], assignments[i])) return std::nullopt;
    }
    if (kind != EditKind::Unset && !EndInTheirLines(targets, assignments)) return std::nullopt;
    const Listener watching(Progress(1));
    const VemoKesConfigTools::CTextIndex index(mBefore, mGlobals.database,
                                               Text(mLoader.Chip()->SystemVersionLabel()));
    return EditText(index, changes);
}

bool TextEditor::Load() {
    mBefore = ReadWhole(mFile.Path());
    const TextReport report = mLoader.Read(mFile, Progress(0));
    if (report.exit == EXIT_SYSTEM) {
        mBar.Erase();
        PrintMessages(report, mLoader.Messages());
        mResult = EXIT_SYSTEM;
        return false;
    }
    for (const Finding& finding : report.findings) {
        if (finding.severity == "error") mErrorsBefore.push_back(finding.message);
    }
    return true;
}

TextEditor::Target TextEditor::FindTarget(EditKind kind, const PlaceFilter& filter,
                                          const KeyAddress& address) {
    const auto candidates = FindCandidates(mLoader.Library(), *mLoader.Chip(), filter, address);
    const auto values = FindValues(mLoader.Facade(), candidates, filter, address);
    if (kind == EditKind::Add && !values.empty()) {
        throw Failure(EXIT_FINDINGS, mFile.Name() + ": " + address.text + " is there already, in " +
                                         PlaceText(*values.front()) + ": " + Text(values.front()->Value()) +
                                         "; \"kes set\" changes it");
    }
    if (values.size() > 1) FailNotUnique(address, values);
    if (values.size() == 1) {
        const api::KeyValue& value = *values.front();
        for (const KeyCandidate& candidate : candidates) {
            if (candidate.subsystem->Type() != value.SubsystemType()) continue;
            return {candidate.subsystem,
                    value.Psid(),
                    {value.SubsystemType(), value.DeviceId(), value.StoreId()}};
        }
    }
    if (kind == EditKind::Unset) throw Failure(EXIT_FINDINGS, mFile.Name() + " has no " + address.text);
    return FindRoom(filter, address, candidates);
}

/// Where a key goes that is not there yet.
TextEditor::Target TextEditor::FindRoom(const PlaceFilter& filter, const KeyAddress& address,
                                        const std::vector<KeyCandidate>& candidates) {
    std::vector<Target> rooms;
    std::string list;
    for (const auto& place : mLoader.Facade().GetPlaces()) {
        for (const KeyCandidate& candidate : candidates) {
            const TextPlace at{place->SubsystemType(), place->DeviceId(), place->StoreId()};
            if (candidate.subsystem->Type() != place->SubsystemType()) continue;
            if (!filter.Takes(place->SubsystemType(), at.device, at.store)) continue;
            rooms.push_back({candidate.subsystem, candidate.psid, at});
            list += "\n  " + TextOf(at);
        }
    }
    for (const KeyCandidate& candidate : candidates) CheckIndexes(candidate, address);
    if (rooms.size() == 1) return rooms.front();
    if (!rooms.empty()) {
        throw Failure(EXIT_USAGE,
                      address.text +
                          " could go to several places; choose one with --subsystem, --device and "
                          "--store:" +
                          list);
    }
    if (candidates.size() == 1 && filter.Device() && filter.Store()) {
        const KeyCandidate& candidate = candidates.front();
        return {candidate.subsystem,
                candidate.psid,
                {candidate.subsystem->Type(), *filter.Device(), *filter.Store()}};
    }
    const std::string where = candidates.size() == 1
                                  ? Text(candidates.front().subsystem->Name())
                                  : std::string("a subsystem that could have ") + address.text;
    throw Failure(EXIT_USAGE, mFile.Name() + " has no place of " + where +
                                  " yet; say where the key is to go with " +
                                  (candidates.size() == 1 ? "" : "--subsystem, ") +
                                  "--device and --store, as in --device smem --store 1");
}

TextChange TextEditor::ToTextChange(EditKind kind, const Target& target, const Assignment& assignment) {
    TextChange change;
    change.place = target.place;
    change.psid = static_cast<std::uint32_t>(target.psid);
    change.indices.assign(assignment.key.indexes.begin(), assignment.key.indexes.end());
    change.key = assignment.key.text;
    change.value = assignment.value;
    change.isRemoval = kind == EditKind::Unset;
    change.subsystemWord = WordOf(*target.subsystem);
    if (!IsFilePlace(target.place)) change.deviceWord = DeviceName(target.place.device);
    return change;
}

/// Makes the change in the configuration.
bool TextEditor::Change(EditKind kind, const Target& target, const Assignment& assignment) {
    api::FrameworkFacade& facade = mLoader.Facade();
    const api::FrameworkFacade::IndexListRef indexes = assignment.key.IndexList();
    const auto& [type, device, store] = target.place;
    const Listener listener;
    bool changed = false;
    if (kind == EditKind::Unset) {
        changed = facade.RemoveValue(target.subsystem, target.psid, indexes, device, store);
    } else if (!TakesSingleValues(target.place)) {
        changed = ChangeByText(target, assignment);
    } else if (kind == EditKind::Add) {
        changed =
            facade.AddValue(target.subsystem, target.psid, indexes, device, store, LAYER, assignment.value);
    } else {
        changed =
            facade.SetValue(target.subsystem, target.psid, indexes, device, store, LAYER, assignment.value);
    }
    const std::string what = assignment.key.text + " = " + assignment.value + " is refused: ";
    if (changed && listener.Findings().empty()) return true;
    for (const auto& finding : listener.Findings()) {
        Refuse(what + finding.text + (finding.detail.empty() ? "" : ": " + finding.detail));
        if (const std::string quoted = QuotedForShell(finding.code, assignment); !quoted.empty())
            mLoader.Messages().Report(mFile.Name(), "note", "the shell takes quotes away; write " + quoted);
        for (const std::string& note : mLoader.NotesOn(finding))
            mLoader.Messages().Report(mFile.Name(), "note", note);
    }
    if (!listener.Findings().empty()) return false;
    for (const auto& [number, text] : listener.OtherErrors()) Refuse(what + text);
    if (listener.OtherErrors().empty()) Refuse(what + "it does not change the configuration");
    return false;
}

/// Whether a line behind each value would be a line still. A comment that is open at the end is no error.
bool TextEditor::EndInTheirLines(const std::vector<Target>& targets,
                                 const std::vector<Assignment>& assignments) {
    constexpr std::size_t LINES_EACH = 3;
    std::string text;
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        const std::string line = assignments[i].key.text + "=" + assignments[i].value + "\n";
        text.append("file=")
            .append(Text(targets[i].subsystem->Name()))
            .append("1\n")
            .append(line)
            .append(line);
    }
    const VemoKesConfigTools::CTextIndex index(std::move(text), mGlobals.database,
                                               Text(mLoader.Chip()->SystemVersionLabel()));
    for (std::size_t i = 0; i < assignments.size() * LINES_EACH; ++i) {
        if (i < index.Lines().size() && index.Lines()[i].number == i + 1) continue;
        const Assignment& open = assignments[i / LINES_EACH];
        Refuse(open.key.text + " = " + open.value + " is refused: it opens a comment that it does not close");
        return false;
    }
    return true;
}

/// `Change` for the places in which the library sets no single values: by a text that is merged.
bool TextEditor::ChangeByText(const Target& target, const Assignment& assignment) {
    const Scratch scratch("subsystem=" + Text(target.subsystem->Name()) + "\ndevice=" +
                          DeviceName(target.place.device) + "\nstore=" + std::to_string(target.place.store) +
                          "\n" + assignment.key.text + "=" + assignment.value + "\n");
    return mLoader.Facade().LoadText(scratch.Path(), /*merge=*/true);
}

bool TextEditor::Proves(const std::string& path) {
    api::FrameworkFacade again(mGlobals.database);
    again.OwningChip(mLoader.Chip());
    const Listener listener(Progress(2));
    again.LoadText(path, /*merge=*/false);
    std::vector<std::string> errors;
    for (const auto& finding : listener.Findings()) errors.push_back(finding.Message());
    if (const std::optional<std::size_t> added = FirstNew(mErrorsBefore, errors)) {
        const auto& finding = listener.Findings()[*added];
        Refuse("the text would not read right after the change: line " + std::to_string(finding.line) +
               ", column " + std::to_string(finding.column) + ": " + finding.Message() +
               "; nothing was written");
        return false;
    }
    const api::HostString difference = mLoader.Facade().FirstDifference(again);
    if (difference.IsNull()) return true;
    Refuse("the text would not read back as the change was meant, first in " + Text(difference) +
           "; nothing was written");
    return false;
}

void TextEditor::Refuse(const std::string& text) {
    mBar.Erase();
    mLoader.Messages().Report(mFile.Name(), "error", text);
    mResult = EXIT_FINDINGS;
}

}  // namespace kes::cli
