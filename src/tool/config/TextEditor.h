#pragma once

#include "kes/configtools/readerwriters/kestext/common/textindex/EditText.h"
#include "tool/config/ConfigEditor.h"
#include "tool/config/ConfigInput.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyAddress.h"
#include "tool/output/ProgressBar.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kes::tool {

/// Changes keys in a text as its author would: the characters of a value, or a line. The result is to be
/// proved before anybody sees it: it must read as the configuration does after the same changes, and have no
/// error that the text had not before.
class TextEditor {
public:
    TextEditor(const Settings& settings, const ConfigInput& input, const PlaceOptions& place);

    /// The text after all changes. Nothing, and the reason printed, when one of them is refused: the exit
    /// code is then in `Result`. Throws `Failure` for what was asked wrongly.
    std::optional<std::string> Edit(EditKind kind, const std::vector<Assignment>& assignments);
    /// Reads the result, and compares. False with the reason printed.
    bool Proves(const std::string& edited);
    ExitCode Result() const { return mResult; }
    /// What has loaded the text.
    const ConfigLoader& Loader() const { return mLoader; }

private:
    std::function<void(std::uint64_t)> Progress(std::uint64_t round);
    bool Load();
    VemoKesConfigTools::TextChange ToTextChange(EditKind kind, const EditTarget& target,
                                                const Assignment& assignment);
    void Refuse(const std::string& text);

    const Settings& mSettings;
    const ConfigInput& mInput;
    PlaceOptions mPlace;
    ConfigLoader mLoader;
    ProgressBar mBar;
    std::vector<std::string> mErrorsBefore;
    ExitCode mResult = EXIT_FINE;
};

}  // namespace kes::tool
