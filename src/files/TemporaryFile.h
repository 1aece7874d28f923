#pragma once

#include "files/OpenFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VemoKesConfigTools::files {

/// A new file of its owner alone, with a name that nobody can guess, beside the one that it is made for. It
/// is removed with the object, and, where `RemoveTemporariesOnSignals` was called, by a signal that ends the
/// process. While it lives it is locked, so that nobody takes it for one that was left behind.
class TemporaryFile {
public:
    /// `path` is that of the file it is made for; `mark` goes into its name. `isShared` gives it the access
    /// of any new file instead, which `SharedMode` then tells; the file is private all the same.
    TemporaryFile(const std::string& path, std::string_view mark, bool isShared);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::string& Path() const { return mPath; }
    OpenFile& File() { return *mFile; }
    std::uint32_t SharedMode() const { return mSharedMode; }
    /// Leaves the file where it is, and gives up what the object knew of it.
    OpenFile Keep();

private:
    std::string mPath;
    std::optional<OpenFile> mFile;
    std::uint32_t mSharedMode = 0;
    bool mIsOwned = true;
};

/// The mark of a file that is about to take the place of another.
inline constexpr std::string_view REPLACEMENT_MARK = ".kes-";

/// Whether a name is that of a temporary file for `name` with this mark.
bool IsTemporaryFor(std::string_view temporary, std::string_view name, std::string_view mark);
/// Removes the temporary files for `name` in a folder that no process has any more. For the holder of the
/// lock. With an empty name those for all files.
void ClearTemporaries(const std::string& folder, std::string_view name, std::string_view mark);

}  // namespace VemoKesConfigTools::files
