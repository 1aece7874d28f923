#pragma once

#include "cli/ConfigSource.h"
#include "cli/TextFile.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kes::cli {

/// A configuration that is there to be read. Throws `Failure` when a file or folder cannot be opened; of a
/// device only its plug-in can tell.
class ConfigInput {
public:
    explicit ConfigInput(ConfigSource source);
    /// A text that is not there yet, with what it is to begin with.
    ConfigInput(ConfigSource source, const std::string& content);

    /// How messages name it.
    const std::string& Name() const { return mFile ? mFile->Name() : mSource.word; }
    /// Where to load it from: standard input is in a file by now.
    const ConfigSource& Source() const { return mSource; }
    /// The text; null for anything else.
    const TextFile* Text() const { return mFile ? &*mFile : nullptr; }
    /// In bytes; 0 when nobody knows it.
    std::uint64_t Size() const { return SizeOf(mSource); }
    static std::uint64_t SizeOf(const ConfigSource& source);
    /// The label of the system that it names itself; empty without one. Good for a default only.
    std::string System() const;

private:
    ConfigSource mSource;
    std::optional<TextFile> mFile;
};

/// Opens a configuration. The failure names it, for commands that print no other message about it.
ConfigInput OpenConfig(const ConfigSource& source);

}  // namespace kes::cli
