#pragma once

#include "files/FileLock.h"
#include "files/Files.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/Settings.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kes::tool {

/// How a file is written that may be there already.
struct OutputOptions {
    bool force = false;
};

/// Whether a path stands for standard output: "-", or a name that the system gives it.
bool IsStandardOutput(const std::string& path);

/// The file that a command writes, locked from before the first look at it until the object ends. One that is
/// there is replaced only by its own kind, unless that is forced. Pipes and terminals are written to as they
/// are.
class OutputFile {
public:
    /// What a file of the kind is called ("a configuration text"), and whether a content is of it; an empty
    /// content always is.
    struct Kind {
        const char* name;
        std::function<bool(const std::string&)> fits;
    };

    /// Throws `Failure`: `EXIT_USAGE` for a file of another kind, `EXIT_SYSTEM` for what cannot be read or
    /// locked.
    OutputFile(const Settings& settings, const std::string& path, const Kind& kind, OutputOptions options);

    /// What is there; nothing for a new file, and for what is no file.
    const std::optional<VemoKesConfigTools::files::FileContent>& Before() const { return mBefore; }
    /// Replaces the whole file, or nothing of it, and says on standard error what could not be kept of the
    /// old one. `expected` is what the file is to be still; without one, what it was when the object was
    /// made. Throws `Failure`.
    void Write(std::string_view content,
               const VemoKesConfigTools::files::FileContent* expected = nullptr) const;

private:
    const Settings& mSettings;
    std::string mPath;
    OutputOptions mOptions;
    VemoKesConfigTools::files::FileLock mLock;
    std::optional<VemoKesConfigTools::files::FileContent> mBefore;
    bool mIsStream = false;  ///< a pipe, terminal or other device
};

/// Refuses a folder with files named as chunk files that are none: a save would replace some of them, and
/// leave others that nobody can load. Throws `Failure`.
void CheckChunkFolder(const std::string& folder);

/// Texts of the chip of a loader, or of the first of the database before one was chosen.
OutputFile::Kind ConfigTextKind(const Settings& settings, const ConfigLoader& loader);
OutputFile::Kind DatabaseKind();
OutputFile::Kind JsonKind();

}  // namespace kes::tool
