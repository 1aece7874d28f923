#pragma once

#include "facade/FrameworkFacade.h"
#include "tool/config/ConfigInput.h"
#include "tool/config/ConfigReport.h"
#include "tool/config/FindingNotes.h"
#include "tool/keys/Listener.h"
#include "tool/keys/Session.h"
#include "tool/keys/Settings.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/SourceLines.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kes::tool {

/// Loads configurations for commands, and reports what is wrong with them.
class ConfigLoader {
public:
    explicit ConfigLoader(const Settings& settings);

    /// Loads a configuration: `EXIT_FINE`, `EXIT_FINDINGS` with all errors printed on standard error, or
    /// `EXIT_SYSTEM`. What takes long shows a bar on a terminal.
    ExitCode Load(const ConfigInput& input);
    /// The same for commands that go on with the lines of a text that are good: says what was left out.
    /// Anything else is loaded whole. `EXIT_FINE`, or `EXIT_SYSTEM`.
    ExitCode LoadWhatIsGood(const ConfigInput& input);
    using Progress = std::function<void(std::uint64_t)>;
    using Found = std::function<void(const Finding&)>;
    /// The same without printing: what was found. `progress` is told how many bytes have been read. `found`,
    /// if there is one, is handed each finding in a text while it is read, and the report has none of them.
    ConfigReport Read(const ConfigInput& input, Progress progress = {}, const Found& found = {});
    /// What the last load has filled.
    api::FrameworkFacade& Facade() { return mFacade; }
    /// The chip of the last load: the one of the options, or that the configuration names, or the first.
    const std::shared_ptr<api::Chip>& Chip() const { return mChip; }
    /// Loads the default values of subsystems. Throws `Failure`.
    void LoadDefaults(const std::vector<std::shared_ptr<api::Subsystem>>& subsystems);
    Session& Library() { return mSession; }
    /// What helps with a finding of the chip's text whose line is not at hand.
    std::vector<std::string> NotesOn(const VemoKesConfigTools::TextFinding& said);
    /// What the configuration of the last load holds.
    ConfigSummary Summary() const;
    Diagnostics& Messages() { return mDiagnostics; }

private:
    ConfigReport ReadWithBar(const ConfigInput& input);
    bool ChooseChip(const ConfigInput& input);
    ConfigReport Load(const ConfigInput& input, const Listener& listener);
    Finding MakeFinding(SourceLines& lines, const VemoKesConfigTools::TextFinding& said);

    std::string mChosenChip;
    Session mSession;
    api::FrameworkFacade mFacade;
    Diagnostics mDiagnostics;
    FindingNotes mNotes;
    std::shared_ptr<api::Chip> mChip;
};

}  // namespace kes::tool
