#pragma once

#include "files/TemporaryFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

/// A file that has been written, synced and verified by reading back, under a temporary name in the folder of
/// its target. It has the access rights of the file that it will replace.
class PreparedFile {
public:
    /// `target` must not be a link. Appends to `notes` what could not be kept of the old file.
    PreparedFile(const std::string& target, std::string_view mark, std::string_view content, bool force,
                 std::vector<std::string>& notes);

    const std::string& Target() const { return mTarget; }
    const std::string& TemporaryPath() const { return mTemporary.Path(); }
    /// Renames it to the target; the caller syncs the folder. Returns the file, open and locked.
    OpenFile Rename();
    /// Leaves it under its temporary name, for the caller to rename. Returns the file, open and locked.
    OpenFile Keep() { return mTemporary.Keep(); }

private:
    std::string mTarget;
    std::optional<FileStatus> mOld;
    TemporaryFile mTemporary;
};

}  // namespace VemoKesConfigTools::files
