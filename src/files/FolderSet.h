#pragma once

#include "files/Disk.h"
#include "files/FileError.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

// Files of a folder that are one thing together: a save replaces them all or none. A save brings all new
// files to the disk under temporary names and then commits by giving a journal, which lists the names, its
// own name. Only after that the files take their names. Where a save was cut, a reader takes the files as the
// journal has them, and the next save finishes the work first.

/// A file of a set.
struct SetFile {
    std::string name;
    std::string content;
};

/// Where a file of a set is to be read.
struct SetEntry {
    std::string name;  ///< of the file in the folder
    /// The path of its content: that of the name, unless the save that made it was cut.
    std::string path;
};

/// The files of a folder whose names have this ending, as the last save that was committed has left them, in
/// the order of the file system. Folders, pipes and links to nothing are among them. Throws `FileError`.
KES_API std::vector<SetEntry> ListSet(const std::string& folder, std::string_view ending);
/// The content of a file that `ListSet` gave. Throws `FileError`.
KES_API std::string ReadSetFile(const std::string& folder, const SetEntry& entry);

/// What a save makes of a folder.
struct SetChange {
    std::vector<SetFile> files;        ///< new or in place of what has the name
    std::vector<std::string> removed;  ///< names of files that go
};

/// The lock of a folder for a save, with what was left of an earlier one put in order. The folder is made
/// where it is missing, and goes with the object when nothing was committed. Throws `FileError`.
class KES_API SetWriter {
public:
    explicit SetWriter(const std::string& folder);
    SetWriter(const SetWriter&) = delete;
    SetWriter& operator=(const SetWriter&) = delete;
    ~SetWriter();

    /// Makes the change as a whole. Gives notes as `ReplaceFile` does. Throws `FileError`; the folder is then
    /// as it was, unless the text says otherwise.
    std::vector<std::string> Commit(const SetChange& change);

private:
    struct State;
    std::unique_ptr<State> mpState;
};

}  // namespace VemoKesConfigTools::files
