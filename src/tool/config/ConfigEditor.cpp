#include "tool/config/ConfigEditor.h"

#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "tool/keys/DeviceWords.h"
#include "tool/keys/Listener.h"

#include <algorithm>
#include <utility>

namespace kes::tool {

namespace {

using VemoKesConfigTools::TextPlace;

constexpr std::int32_t LAYER = api::LayerIndexVals::Minimum;
/// Whether the library sets single values there.
bool TakesSingleValues(const TextPlace& place) {
    return IsFilePlace(place) || place.device == api::DEVICE_TYPE_OTP ||
           place.device == api::DEVICE_TYPE_SMEM || place.device == api::DEVICE_TYPE_MTP;
}

std::string TextOf(const TextPlace& place) {
    return PlaceText(static_cast<api::SubsystemTypes>(place.subsystem), place.device, place.store);
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

}  // namespace

bool IsFilePlace(const TextPlace& place) {
    constexpr std::int32_t FIRST_STORE = 1;
    constexpr std::int32_t LAST_STORE = 15;
    return place.device == api::DEVICE_TYPE_EEPROM && place.store >= FIRST_STORE && place.store <= LAST_STORE;
}

std::vector<EditTarget> ConfigEditor::FindTargets(EditKind kind, const PlaceOptions& place,
                                                  const std::vector<Assignment>& assignments) {
    const PlaceFilter filter(mLoader.Library(), *mLoader.Chip(), place);
    std::vector<EditTarget> targets;
    for (const Assignment& assignment : assignments) {
        const EditTarget target = FindTarget(kind, filter, assignment.key);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            if (targets[i].place == target.place && targets[i].psid == target.psid &&
                assignments[i].key.indexes == assignment.key.indexes) {
                throw Failure(EXIT_USAGE, assignment.key.text + " is given twice");
            }
        }
        targets.push_back(target);
    }
    return targets;
}

bool ConfigEditor::Apply(EditKind kind, const std::vector<EditTarget>& targets,
                         const std::vector<Assignment>& assignments) {
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        if (!Change(kind, targets[i], assignments[i])) return false;
    }
    return kind == EditKind::Unset || EndInTheirLines(targets, assignments);
}

EditTarget ConfigEditor::FindTarget(EditKind kind, const PlaceFilter& filter, const KeyAddress& address) {
    const auto candidates = FindCandidates(mLoader.Library(), *mLoader.Chip(), filter, address);
    const auto values = FindValues(mLoader.Facade(), candidates, filter, address);
    if (kind == EditKind::Add && !values.empty()) {
        throw Failure(EXIT_FINDINGS, mName + ": " + address.text + " is there already, in " +
                                         PlaceText(*values.front()) + ": " + values.front()->ValueBytes() +
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
    if (kind == EditKind::Unset) throw Failure(EXIT_FINDINGS, mName + " has no " + address.text);
    return FindRoom(filter, address, candidates);
}

/// Where a key goes that is not there yet.
EditTarget ConfigEditor::FindRoom(const PlaceFilter& filter, const KeyAddress& address,
                                  const std::vector<KeyCandidate>& candidates) {
    std::vector<EditTarget> rooms;
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
    throw Failure(EXIT_USAGE, mName + " has no place of " + where + " yet; say where the key is to go with " +
                                  (candidates.size() == 1 ? "" : "--subsystem, ") +
                                  "--device and --store, as in --device smem --store 1");
}

/// Makes the change in the configuration.
bool ConfigEditor::Change(EditKind kind, const EditTarget& target, const Assignment& assignment) {
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
        changed = facade.AddValueBytes(target.subsystem, target.psid, indexes, device, store, LAYER,
                                       assignment.value);
    } else {
        changed = facade.SetValueBytes(target.subsystem, target.psid, indexes, device, store, LAYER,
                                       assignment.value);
    }
    const std::string what = assignment.key.text + " = " + assignment.value + " is refused: ";
    if (changed && listener.Findings().empty()) return true;
    for (const auto& finding : listener.Findings()) {
        Refuse(what + finding.text + (finding.detail.empty() ? "" : ": " + finding.detail));
        if (const std::string quoted = QuotedForShell(finding.code, assignment); !quoted.empty())
            mLoader.Messages().Report(mName, "note", "the shell takes quotes away; write " + quoted);
        for (const std::string& note : mLoader.NotesOn(finding))
            mLoader.Messages().Report(mName, "note", note);
    }
    if (!listener.Findings().empty()) return false;
    for (const auto& [number, text] : listener.OtherErrors()) Refuse(what + text);
    if (listener.OtherErrors().empty()) Refuse(what + "it does not change the configuration");
    return false;
}

/// Whether a line behind each value would be a line still. A comment that is open at the end is no error.
bool ConfigEditor::EndInTheirLines(const std::vector<EditTarget>& targets,
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
    const VemoKesConfigTools::CTextIndex index(std::move(text), mSettings.database,
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
bool ConfigEditor::ChangeByText(const EditTarget& target, const Assignment& assignment) {
    std::string text("subsystem=" + Text(target.subsystem->Name()) + "\ndevice=" +
                     DeviceName(target.place.device) + "\nstore=" + std::to_string(target.place.store) +
                     "\n" + assignment.key.text + "=" + assignment.value + "\n");
    return mLoader.Facade().LoadTextFromMemory(std::move(text), /*merge=*/true);
}

void ConfigEditor::Refuse(const std::string& text) { mLoader.Messages().Report(mName, "error", text); }

}  // namespace kes::tool
