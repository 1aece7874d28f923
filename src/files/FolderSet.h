#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

// A set is a group of files in a folder that a save replaces all together or not at all. A save writes and
// syncs all new files under temporary names, then commits by renaming a journal, which lists the changes, to
// its final name. Only then are the files themselves renamed. If a save is interrupted after the commit,
// readers take the files that the journal lists, and the next save completes the renames first.

/// A file of a set.
struct SetFile {
    std::string name;
    std::string content;
};

/// Where to read a file of a set.
struct SetEntry {
    std::string name;  ///< of the file in the folder
    /// The path to read: that of `name`, or that of a temporary file if the save was interrupted.
    std::string path;
};

/// The files of a folder whose names have this ending, as of the last committed save, in file system order.
/// Includes folders, pipes and dangling links with such names. Throws `FileError`.
KES_API std::vector<SetEntry> ListSet(const std::string& folder, std::string_view ending);
/// The content of a file that `ListSet` returned. Throws `FileError`.
KES_API std::string ReadSetFile(const std::string& folder, const SetEntry& entry);

/// The changes that a save makes to a folder.
struct SetChange {
    std::vector<SetFile> files;        ///< created, or replacing the files of these names
    std::vector<std::string> removed;  ///< names of the files to remove
};

/// Locks a folder for a save and completes or cleans up after an interrupted earlier one. The folder is
/// created if it is missing, and removed with the object if nothing was committed. Throws `FileError`.
class KES_API SetWriter {
public:
    explicit SetWriter(const std::string& folder);
    SetWriter(const SetWriter&) = delete;
    SetWriter& operator=(const SetWriter&) = delete;
    ~SetWriter();

    /// Makes all changes or none. Returns notes as `ReplaceFile` does. Throws `FileError`; the folder is then
    /// unchanged unless the message says otherwise.
    std::vector<std::string> Commit(const SetChange& change);

private:
    struct State;
    std::unique_ptr<State> mpState;
};

}  // namespace VemoKesConfigTools::files
