#include "cli/TextLoader.h"

#include "cli/NearNames.h"

namespace kes::cli {

namespace {

using VemoKesConfigTools::TextFinding;

// Kinds of findings for which a near name helps.
constexpr std::int32_t UNKNOWN_NAME = 26;
constexpr std::int32_t NO_KEY_NUMBER = 21;

}  // namespace

TextLoader::TextLoader(const Globals& globals)
    : mChosenChip(globals.chip), mSession(globals), mFacade(globals.database), mDiagnostics(globals.noColor) {
    if (!mChosenChip.empty()) mSession.FindChip(mChosenChip);
}

ExitCode TextLoader::Load(const TextFile& file) {
    const bool guessed = ChooseChip(file);
    const Listener listener;
    mFacade.OwningChip(mChip);
    const bool good = mFacade.LoadText(file.Path(), /*merge=*/false);
    const ExitCode result = good ? EXIT_FINE : ReportFindings(file, listener);
    for (const std::string& status : listener.Statuses()) {
        if (listener.Findings().empty()) mDiagnostics.Report(file.Name(), "warning", status);
    }
    if (guessed && result == EXIT_FINDINGS && !file.IsEmpty()) {
        mDiagnostics.Report(file.Name(), "note",
                            "checked as a text of " + Text(mChip->SystemVersionLabel()) +
                                ", the first of the database; choose another system with --chip");
    }
    return result;
}

/// Whether neither the options nor the text have named the system.
bool TextLoader::ChooseChip(const TextFile& file) {
    mChip = mChosenChip.empty() ? mSession.TryChip(file.Version()) : nullptr;
    const bool named = mChip != nullptr || !mChosenChip.empty();
    if (!mChip) mChip = mSession.FindChip(mChosenChip);
    return !named;
}

ExitCode TextLoader::ReportFindings(const TextFile& file, const Listener& listener) {
    for (const TextFinding& finding : listener.Findings()) {
        if (finding.line == 0) {
            mDiagnostics.Report(file.Name(), "error", finding.Message());
            continue;
        }
        mDiagnostics.Report(file.Name(), finding.line, finding.column, "error", finding.Message());
        mDiagnostics.ShowSource(file.Path(), finding.line, finding.column);
        if (finding.code != UNKNOWN_NAME && finding.code != NO_KEY_NUMBER) continue;
        if (const std::string near = DidYouMean(finding.key, KeyNames()); !near.empty()) {
            mDiagnostics.Report(file.Name(), finding.line, finding.column, "note", near);
        }
    }
    const std::vector<Listener::Error> others = listener.OtherErrors();
    for (const auto& [number, text] : others) mDiagnostics.Report(file.Name(), "error", text);
    return others.empty() || file.IsEmpty() ? EXIT_FINDINGS : EXIT_SYSTEM;
}

/// Asked for once per chip, and only when there is something to look for.
const std::vector<std::string>& TextLoader::KeyNames() {
    const std::string label = Text(mChip->SystemVersionLabel());
    const auto found = mKeyNames.find(label);
    if (found != mKeyNames.end()) return found->second;
    return mKeyNames.emplace(label, mSession.KeyNames(*mChip)).first->second;
}

}  // namespace kes::cli
