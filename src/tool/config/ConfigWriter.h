#pragma once

#include "tool/config/ConfigAccess.h"
#include "tool/config/ConfigLoader.h"
#include "tool/config/OutputFile.h"

#include <string>
#include <vector>

namespace kes::tool {

/// Writes what a loader has loaded, and proves it: what was written is loaded again and compared.
class ConfigWriter {
public:
    ConfigWriter(const Settings& settings, ConfigLoader& loader) : mSettings(settings), mLoader(loader) {}

    /// Makes a text that reads back. Gives where it would not read back the same, null when it does. Throws
    /// `Failure`.
    api::HostString RenderText(std::string& text, const api::TextForm& form);
    /// Puts a rendered text into a file, unless that is the input itself and would lose comments of its
    /// author. `EXIT_FINE`, or another code with the reason printed. Throws `Failure`.
    ExitCode ReplaceText(const ConfigInput& input, const OutputFile& output, const std::string& text,
                         bool dropComments);
    /// The configuration as a text of one line for each key. Throws `Failure`.
    std::string AsText();
    /// Writes to a folder of chunk files or to a device, which the caller has locked. `EXIT_FINE`, or another
    /// code with the reason printed; the target is then as it was, unless the reason is that it does not read
    /// back. Throws `Failure`.
    ExitCode Save(const ConfigSource& target, const SaveOptions& options);

private:
    std::string SaveText(const api::TextForm& form);
    ExitCode Load(api::FrameworkFacade& facade, const ConfigSource& source);
    ExitCode Report(const ConfigSource& target, const Listener& listener);

    const Settings& mSettings;
    ConfigLoader& mLoader;
};

}  // namespace kes::tool
