#pragma once

#include "files/OpenFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VemoKesConfigTools::files {

/// A new file, accessible to its owner only and with an unpredictable name, in the folder of the file that it
/// is made for. It is removed with the object and, if `RemoveTemporariesOnSignals` was called, by a signal
/// that ends the process. It is locked while it exists, so that other processes do not take it for a
/// leftover.
class TemporaryFile {
public:
    /// `path` is that of the file it is made for; `mark` becomes part of its name. With `isShared`,
    /// `SharedMode` returns the default mode of new files; the file itself is still made private.
    TemporaryFile(const std::string& path, std::string_view mark, bool isShared);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::string& Path() const { return mPath; }
    OpenFile& File() { return *mFile; }
    std::uint32_t SharedMode() const { return mSharedMode; }
    /// Releases ownership: the file stays where it is and is returned, open and locked.
    OpenFile Keep();

private:
    std::string mPath;
    std::optional<OpenFile> mFile;
    std::uint32_t mSharedMode = 0;
    bool mIsOwned = true;
};

/// The mark of a file that is to replace another.
inline constexpr std::string_view REPLACEMENT_MARK = ".kes-";

/// Whether a name is that of a temporary file for `name` with this mark.
bool IsTemporaryFor(std::string_view temporary, std::string_view name, std::string_view mark);
/// Removes leftover temporary files for `name`, or for all files if `name` is empty, from a folder; those
/// that a process still holds stay. The caller holds the lock of the file or folder.
void ClearTemporaries(const std::string& folder, std::string_view name, std::string_view mark);

}  // namespace VemoKesConfigTools::files
