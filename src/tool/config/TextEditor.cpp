#include "tool/config/TextEditor.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "tool/keys/DeviceWords.h"
#include "tool/keys/KeyList.h"
#include "tool/keys/Listener.h"

#include <algorithm>
#include <utility>

namespace kes::tool {

namespace {

using VemoKesConfigTools::TextChange;

// A text is read as it was, for its index, and as it is after the change.
constexpr std::uint64_t ROUNDS = 3;

/// How texts name a subsystem.
std::string WordOf(const api::Subsystem& subsystem) {
    return Text(subsystem.Alias().IsNullOrEmpty() ? subsystem.Name() : subsystem.Alias());
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

TextEditor::TextEditor(const Settings& settings, const ConfigInput& input, const PlaceOptions& place)
    : mSettings(settings), mInput(input), mPlace(place), mLoader(settings), mBar(input.Size() * ROUNDS) {}

/// Shows how far the whole work is, of which a round is one reading of the text.
std::function<void(std::uint64_t)> TextEditor::Progress(std::uint64_t round) {
    return [this, before = mInput.Size() * round](std::uint64_t bytes) { mBar.Show(before + bytes); };
}

std::optional<std::string> TextEditor::Edit(EditKind kind, const std::vector<Assignment>& assignments) {
    if (!Load()) return std::nullopt;
    ConfigEditor editor(mSettings, mLoader, mInput.Name());
    const std::vector<EditTarget> targets = editor.FindTargets(kind, mPlace, assignments);
    std::vector<TextChange> changes;
    for (std::size_t i = 0; i < assignments.size(); ++i)
        changes.push_back(ToTextChange(kind, targets[i], assignments[i]));
    mBar.Erase();
    if (!editor.Apply(kind, targets, assignments)) {
        mResult = EXIT_FINDINGS;
        return std::nullopt;
    }
    const Listener watching(Progress(1));
    const VemoKesConfigTools::CTextIndex index(mInput.Text()->Content(), mSettings.database,
                                               Text(mLoader.Chip()->SystemVersionLabel()));
    return EditText(index, changes);
}

bool TextEditor::Load() {
    const ConfigReport report = mLoader.Read(mInput, Progress(0));
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

TextChange TextEditor::ToTextChange(EditKind kind, const EditTarget& target, const Assignment& assignment) {
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

bool TextEditor::Proves(const std::string& edited) {
    api::FrameworkFacade again(mSettings.database);
    again.OwningChip(mLoader.Chip());
    const Listener listener(Progress(2));
    again.LoadTextFromMemory(edited, /*merge=*/false);
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
    mLoader.Messages().Report(mInput.Name(), "error", text);
    mResult = EXIT_FINDINGS;
}

}  // namespace kes::tool
