#pragma once

#include "messages/Export.h"

#include <stdexcept>
#include <string>

namespace VemoKesConfigTools::files {

/// What was being done when an access to a file, folder or device failed. REFUSED: the file was not replaced,
/// but would have been with `ReplaceOptions::force`. CHANGED: the file was changed by another program in the
/// meantime; force does not override that.
enum class FileAction { OPEN, READ, WRITE, LOCK, REFUSED, CHANGED };

/// A failed file operation: what was attempted, on which path, and why it failed. `what()` is
/// "PATH: cannot be read: CAUSE". No file was changed unless the operation is documented otherwise.
class KES_API FileError : public std::runtime_error {
public:
    /// `error` is a value of `errno`.
    FileError(FileAction action, const std::string& path, int error);
    FileError(FileAction action, const std::string& path, const std::string& cause);
    FileError(const FileError&) = default;
    FileError& operator=(const FileError&) = default;
    ~FileError() override;

    FileAction Action() const { return mAction; }
    const std::string& Path() const { return mPath; }
    /// The cause alone: "No such file or directory".
    const std::string& Cause() const { return mCause; }
    /// The `errno` of the failed call; 0 if the system reported none.
    int Number() const { return mNumber; }
    /// "cannot be read: CAUSE", for messages that already name the path.
    std::string Reason() const;

private:
    FileAction mAction;
    std::string mPath;
    std::string mCause;
    int mNumber = 0;
};

}  // namespace VemoKesConfigTools::files
