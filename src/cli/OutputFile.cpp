#include "cli/OutputFile.h"

#include "cli/ExitCodes.h"
#include "cli/Platform.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace kes::cli {

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string& path) : mPath(path) {
    std::error_code failed;
    if (fs::is_directory(path, failed)) throw Failure(EXIT_SYSTEM, path + ": is a directory");
    const fs::path target = fs::canonical(path, failed);
    if (!failed) mPath = target.string();
    mTemporary = TemporaryBeside(mPath);
    fs::remove(mTemporary, failed);
}

OutputFile::~OutputFile() {
    std::error_code ignored;
    if (!mTemporary.empty()) fs::remove(mTemporary, ignored);
}

void OutputFile::Commit() {
    std::error_code failed;
    if (const fs::file_status status = fs::status(mPath, failed); fs::exists(status)) {
        fs::permissions(mTemporary, status.permissions(), failed);
    }
    if (!SyncAndRename(mTemporary, mPath)) {
        throw Failure(EXIT_SYSTEM, mPath + ": cannot be written: " + std::strerror(errno));
    }
    mTemporary.clear();
}

}  // namespace kes::cli
