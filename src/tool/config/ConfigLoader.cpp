#include "tool/config/ConfigLoader.h"

#include "facade/Framework.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "tool/config/ConfigAccess.h"
#include "tool/config/SourceWords.h"
#include "tool/keys/DeviceWords.h"
#include "tool/output/ProgressBar.h"

#include <exception>
#include <utility>

namespace kes::tool {

using VemoKesConfigTools::TextFinding;

namespace {

std::string WhatIsUsed(const std::vector<Finding>& findings) {
    const Finding& last = findings.back();
    // These end the reading.
    if (last.code == VemoKesConfigTools::PE_UNKNOWN_SUBSYSTEM ||
        last.code == VemoKesConfigTools::PE_SUBSYSTEM_NOT_SET) {
        return "the reading ended at line " + std::to_string(last.line) + "; what follows it is not used";
    }
    return std::to_string(findings.size()) +
           (findings.size() == 1 ? " line has an error" : " lines have errors") +
           "; the rest of the text is used";
}

}  // namespace

ConfigLoader::ConfigLoader(const Settings& settings)
    : mChosenChip(settings.chip),
      mSession(settings),
      mFacade(settings.database),
      mDiagnostics(settings.noColor),
      mNotes(mSession) {
    if (!mChosenChip.empty()) mSession.FindChip(mChosenChip);
}

ExitCode ConfigLoader::Load(const ConfigInput& input) {
    const ConfigReport report = ReadWithBar(input);
    PrintMessages(report, mDiagnostics);
    return report.exit;
}

ExitCode ConfigLoader::LoadWhatIsGood(const ConfigInput& input) {
    ConfigReport report = ReadWithBar(input);
    if (report.exit != EXIT_FINDINGS || input.Text() == nullptr) {
        PrintMessages(report, mDiagnostics);
        return report.exit == EXIT_FINE ? EXIT_FINE : EXIT_SYSTEM;
    }
    if (!report.findings.empty()) report.notes.push_back(WhatIsUsed(report.findings));
    for (const std::string& error : report.errors) report.findings.emplace_back().message = error;
    report.errors.clear();
    for (Finding& finding : report.findings) finding.severity = "warning";
    PrintMessages(report, mDiagnostics);
    return EXIT_FINE;
}

ConfigReport ConfigLoader::ReadWithBar(const ConfigInput& input) {
    ProgressBar bar(input.Size());
    ConfigReport report = Read(input, [&](std::uint64_t bytes) { bar.Show(bytes); });
    bar.Erase();
    return report;
}

void ConfigLoader::LoadDefaults(const std::vector<std::shared_ptr<api::Subsystem>>& subsystems) {
    for (const auto& subsystem : subsystems) {
        if (mFacade.LoadDefaults(subsystem)) continue;
        api::HostString message;
        api::Framework::GetLastError(message);
        throw Failure(EXIT_SYSTEM, "default values of " + Text(subsystem->Name()) + ": " + Text(message));
    }
}

std::vector<std::string> ConfigLoader::NotesOn(const TextFinding& said) {
    Finding finding;
    finding.code = said.code;
    mNotes.Add(*mChip, said, {}, finding);
    return finding.notes;
}

ConfigReport ConfigLoader::Read(const ConfigInput& input, Progress progress, const Found& found) {
    const bool guessed = ChooseChip(input);
    SourceLines lines(input.Text() != nullptr ? std::string_view(input.Text()->Content())
                                              : std::string_view());
    std::exception_ptr failure;
    // No exception of ours may go through the reader.
    const auto pass = [&](const TextFinding& said) {
        if (failure) return;
        try {
            found(MakeFinding(lines, said));
        } catch (...) {
            failure = std::current_exception();
        }
    };
    const Listener listener(std::move(progress), found ? Listener::Found(pass) : Listener::Found());
    ConfigReport report = Load(input, listener);
    if (failure) std::rethrow_exception(failure);
    for (const TextFinding& said : listener.Findings()) report.findings.push_back(MakeFinding(lines, said));
    for (const std::string& status : listener.Statuses()) {
        if (listener.AnyFinding()) break;
        if (report.exit == EXIT_SYSTEM) {
            report.notes.push_back(status);
            continue;
        }
        Finding finding;
        finding.severity = "warning";
        finding.kind = status;
        finding.message = status;
        report.findings.push_back(std::move(finding));
    }
    const bool isEmpty = input.Text() != nullptr && input.Text()->IsEmpty();
    if (guessed && report.exit == EXIT_FINDINGS && !isEmpty) {
        report.notes.push_back(std::string("checked as a ") + (input.Text() ? "text" : "configuration") +
                               " of " + report.system +
                               ", the first of the database; choose another system with --chip");
    }
    return report;
}

/// Loads, and reports errors of the whole.
ConfigReport ConfigLoader::Load(const ConfigInput& input, const Listener& listener) {
    mFacade.OwningChip(mChip);
    ConfigReport report;
    report.file = input.Name();
    report.system = Text(mChip->SystemVersionLabel());
    const bool loaded = input.Load(mFacade);
    const std::vector<Listener::Error> errors = listener.OtherErrors();
    if (loaded && (input.Text() != nullptr || errors.empty())) return report;
    for (const auto& [number, error] : errors) report.errors.push_back(error);
    if (input.Text() == nullptr) {
        report.exit = ExitOf(errors);
    } else {
        report.exit = errors.empty() || input.Text()->IsEmpty() ? EXIT_FINDINGS : EXIT_SYSTEM;
    }
    return report;
}

/// Whether neither the options nor the configuration have named the system.
bool ConfigLoader::ChooseChip(const ConfigInput& input) {
    mChip = mChosenChip.empty() ? mSession.TryChip(input.System()) : nullptr;
    const bool named = mChip != nullptr || !mChosenChip.empty();
    if (!mChip) mChip = mSession.FindChip(mChosenChip);
    return !named;
}

Finding ConfigLoader::MakeFinding(SourceLines& lines, const TextFinding& said) {
    Finding finding;
    finding.line = said.line;
    finding.column = said.column;
    finding.code = said.code;
    finding.kind = said.text;
    finding.message = said.Message();
    finding.key = said.key;
    if (said.line == 0) return finding;
    const std::string_view line = lines.Line(said.line);
    // What stands in front of a joined line cannot be seen in it.
    const bool joined = said.line > 1 && lines.Line(said.line - 1).ends_with('\\');
    finding.character = ToCharacter(line, said.column);
    finding.source = line.substr(0, WIDEST_SOURCE);
    mNotes.Add(*mChip, said, joined ? std::string_view() : line, finding);
    return finding;
}

ConfigSummary ConfigLoader::Summary() const {
    ConfigSummary summary{Text(mChip->Name()), mChip->ChipId(), {}, {}};
    for (const auto& place : mFacade.GetPlaces()) {
        summary.places.push_back({Text(api::Subsystem::NameOf(place->SubsystemType())),
                                  DeviceName(place->DeviceId()), place->StoreId(), place->KeyCount()});
    }
    for (const auto& store : mFacade.GetStores()) {
        summary.stores.push_back({DeviceName(store->DeviceId()), store->StoreId()});
    }
    return summary;
}

}  // namespace kes::tool
