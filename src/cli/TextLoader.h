#pragma once

#include "cli/Diagnostics.h"
#include "cli/ExitCodes.h"
#include "cli/Globals.h"
#include "cli/Listener.h"
#include "cli/Session.h"
#include "cli/TextFile.h"
#include "facade/FrameworkFacade.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kes::cli {

/// Loads configuration texts for commands, and reports what is wrong with them on standard error.
class TextLoader {
public:
    explicit TextLoader(const Globals& globals);

    /// Loads a text: `EXIT_FINE`, `EXIT_FINDINGS` with all errors reported, or `EXIT_SYSTEM`.
    ExitCode Load(const TextFile& file);
    /// What the last load has filled.
    api::FrameworkFacade& Facade() { return mFacade; }
    /// The chip of the last load: the one of the options, or of the text's "version" line, or the first.
    const std::shared_ptr<api::Chip>& Chip() const { return mChip; }
    Diagnostics& Messages() { return mDiagnostics; }

private:
    bool ChooseChip(const TextFile& file);
    ExitCode ReportFindings(const TextFile& file, const Listener& listener);
    const std::vector<std::string>& KeyNames();

    std::string mChosenChip;
    Session mSession;
    api::FrameworkFacade mFacade;
    Diagnostics mDiagnostics;
    std::shared_ptr<api::Chip> mChip;
    std::map<std::string, std::vector<std::string>> mKeyNames;  ///< by system version label
};

}  // namespace kes::cli
