#include "files/FileError.h"

#include <system_error>

namespace VemoKesConfigTools::files {

namespace {

const char* Words(FileAction action) {
    switch (action) {
        case FileAction::OPEN:
            return "cannot be opened: ";
        case FileAction::READ:
            return "cannot be read: ";
        case FileAction::WRITE:
            return "cannot be written: ";
        // Their causes are complete: "is locked by ...".
        case FileAction::LOCK:
        case FileAction::REFUSED:
        case FileAction::CHANGED:
            break;
    }
    return "";
}

}  // namespace

FileError::FileError(FileAction action, const std::string& path, int error)
    : FileError(action, path, std::generic_category().message(error)) {
    mNumber = error;
}

FileError::FileError(FileAction action, const std::string& path, const std::string& cause)
    : std::runtime_error(path + ": " + Words(action) + cause), mAction(action), mPath(path), mCause(cause) {}

FileError::~FileError() = default;

std::string FileError::Reason() const { return Words(mAction) + mCause; }

}  // namespace VemoKesConfigTools::files
