#pragma once

#include "files/TemporaryFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

/// A file that is complete, on the disk and has read back, under a temporary name beside the one that it is
/// for. It has the access of the file that it is to replace.
class PreparedFile {
public:
    /// `target` is no link. `notes` gets what could not be kept of the old file.
    PreparedFile(const std::string& target, std::string_view mark, std::string_view content, bool force,
                 std::vector<std::string>& notes);

    const std::string& Target() const { return mTarget; }
    const std::string& TemporaryPath() const { return mTemporary.Path(); }
    /// Gives it its name; the folder is still to be synced. Gives the file, open and locked.
    OpenFile Rename();
    /// Leaves it under its temporary name, for somebody else to rename.
    OpenFile Keep() { return mTemporary.Keep(); }

private:
    std::string mTarget;
    std::optional<FileStatus> mOld;
    TemporaryFile mTemporary;
};

}  // namespace VemoKesConfigTools::files
