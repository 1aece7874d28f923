#include "cli/OutputFile.h"

#include "cli/ExitCodes.h"
#include "cli/Platform.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace kes::cli {

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string& path) : mPath(path) {
    std::error_code failed;
    if (fs::is_directory(path, failed)) throw Failure(EXIT_SYSTEM, path + ": is a directory");
    const bool isThere = fs::exists(path, failed);
    if (isThere && !fs::is_regular_file(path, failed)) {
        throw Failure(EXIT_SYSTEM, path + ": is no regular file");
    }
    const fs::path target = fs::canonical(path, failed);
    if (!failed) mPath = target.string();
    mTemporary = TemporaryBeside(mPath);
    fs::remove(mTemporary, failed);
    if (!isThere) return;
    // What nobody else may read in the file, nobody else may read beside it.
    const std::ofstream created(mTemporary);
    fs::permissions(mTemporary, fs::perms::owner_read | fs::perms::owner_write, failed);
}

OutputFile::~OutputFile() {
    std::error_code ignored;
    if (!mTemporary.empty()) fs::remove(mTemporary, ignored);
}

void OutputFile::Commit() {
    CopyAccess(mPath, mTemporary);
    if (!SyncAndRename(mTemporary, mPath)) {
        throw Failure(EXIT_SYSTEM, mPath + ": cannot be written: " + std::strerror(errno));
    }
    mTemporary.clear();
}

}  // namespace kes::cli
