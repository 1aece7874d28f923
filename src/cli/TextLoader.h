#pragma once

#include "cli/Diagnostics.h"
#include "cli/ExitCodes.h"
#include "cli/FindingNotes.h"
#include "cli/Globals.h"
#include "cli/Listener.h"
#include "cli/Session.h"
#include "cli/TextFile.h"
#include "cli/TextReport.h"
#include "facade/FrameworkFacade.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kes::cli {

/// Loads configuration texts for commands, and reports what is wrong with them.
class TextLoader {
public:
    explicit TextLoader(const Globals& globals);

    /// Loads a text: `EXIT_FINE`, `EXIT_FINDINGS` with all errors printed on standard error, or
    /// `EXIT_SYSTEM`. What takes long shows a bar on a terminal.
    ExitCode Load(const TextFile& file);
    /// The same for commands that go on with the lines that are good: says what was left out. `EXIT_FINE`, or
    /// `EXIT_SYSTEM`.
    ExitCode LoadWhatIsGood(const TextFile& file);
    /// The same without printing: what was found. `progress` is told how many bytes have been read.
    TextReport Read(const TextFile& file, std::function<void(std::uint64_t)> progress = {});
    /// What the last load has filled.
    api::FrameworkFacade& Facade() { return mFacade; }
    /// The chip of the last load: the one of the options, or of the text's "version" line, or the first.
    const std::shared_ptr<api::Chip>& Chip() const { return mChip; }
    /// Loads the default values of subsystems. Throws `Failure`.
    void LoadDefaults(const std::vector<std::shared_ptr<api::Subsystem>>& subsystems);
    Session& Library() { return mSession; }
    /// What helps with a finding of the chip's text whose line is not at hand.
    std::vector<std::string> NotesOn(const VemoKesConfigTools::TextFinding& said);
    /// What the text of the last load holds.
    TextSummary Summary() const;
    Diagnostics& Messages() { return mDiagnostics; }

private:
    TextReport ReadWithBar(const TextFile& file);
    bool ChooseChip(const TextFile& file);
    void TakeFindings(const TextFile& file, const Listener& listener, TextReport& report);

    std::string mChosenChip;
    Session mSession;
    api::FrameworkFacade mFacade;
    Diagnostics mDiagnostics;
    FindingNotes mNotes;
    std::shared_ptr<api::Chip> mChip;
};

}  // namespace kes::cli
