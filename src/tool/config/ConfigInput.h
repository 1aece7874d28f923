#pragma once

#include "facade/FrameworkFacade.h"
#include "files/FileLock.h"
#include "tool/config/ConfigSource.h"
#include "tool/config/TextFile.h"
#include "tool/keys/Settings.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kes::tool {

/// What is done with a configuration, which says how it is locked.
enum class InputAccess {
    PEEK,   ///< looked at for a moment, without a lock
    READ,   ///< a folder or device is shared with other readers; texts are replaced whole, and need no lock
    CHANGE  ///< nobody else may have it until it is written
};

/// A configuration that is there to be read, locked for as long as the object lives. Throws `Failure` when a
/// file or folder cannot be read, or stays locked; of a device only its plug-in can tell.
class ConfigInput {
public:
    ConfigInput(ConfigSource source, InputAccess access, std::chrono::milliseconds lockWait);
    /// A text that is not there yet, with what it is to begin with. `lock` is that of its name.
    ConfigInput(ConfigSource source, const std::string& content, VemoKesConfigTools::files::FileLock lock);

    /// How messages name it.
    const std::string& Name() const { return mText ? mText->Name() : mSource.word; }
    const ConfigSource& Source() const { return mSource; }
    /// The text; null for anything else.
    const TextFile* Text() const { return mText ? &*mText : nullptr; }
    /// In bytes; 0 when nobody knows it.
    std::uint64_t Size() const { return mText ? mText->Content().size() : 0; }
    static std::uint64_t SizeOf(const ConfigSource& source);
    /// The label of the system that it names itself; empty without one. Good for a default only.
    std::string System() const;
    /// Puts it in place of what a facade holds. The result alone does not tell that all of a folder was read;
    /// any error that was heard does.
    bool Load(VEMO::Kes::ConfigurationTools::FrameworkFacade& facade) const;
    /// Lets others at it. What was read stays.
    void Unlock() { mLock = {}; }

private:
    ConfigSource mSource;
    VemoKesConfigTools::files::FileLock mLock;
    std::optional<TextFile> mText;
    std::vector<VEMO::Kes::ConfigurationTools::ChunkContent> mChunks;
};

/// Opens a configuration. The failure names it, for commands that print no other message about it.
ConfigInput OpenConfig(const Settings& settings, const ConfigSource& source,
                       InputAccess access = InputAccess::READ);

/// The path that stands for a configuration in locks and comparisons.
std::string PathOf(const ConfigSource& source);

}  // namespace kes::tool
