#pragma once

#include "messages/Export.h"

#include <stdexcept>
#include <string>

namespace VemoKesConfigTools::files {

/// What was being done when a file, folder or device failed. A replacement is refused where force would have
/// made it; a file that was changed meanwhile is left alone in any case.
enum class FileAction { OPEN, READ, WRITE, LOCK, REFUSED, CHANGED };

/// A file operation that failed: what was done, on which path, and the cause in words. `what()` is
/// "PATH: cannot be read: CAUSE". Nothing was changed, unless the operation says otherwise.
class KES_API FileError : public std::runtime_error {
public:
    /// `error` is a number of `errno`.
    FileError(FileAction action, const std::string& path, int error);
    FileError(FileAction action, const std::string& path, const std::string& cause);
    FileError(const FileError&) = default;
    FileError& operator=(const FileError&) = default;
    ~FileError() override;

    FileAction Action() const { return mAction; }
    const std::string& Path() const { return mPath; }
    /// The cause alone: "No such file or directory".
    const std::string& Cause() const { return mCause; }
    /// The `errno` of the cause; 0 when the system gave none.
    int Number() const { return mNumber; }
    /// "cannot be read: CAUSE", for messages that name the path themselves.
    std::string Reason() const;

private:
    FileAction mAction;
    std::string mPath;
    std::string mCause;
    int mNumber = 0;
};

}  // namespace VemoKesConfigTools::files
