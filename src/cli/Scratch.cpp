#include "cli/Scratch.h"

#include "cli/ExitCodes.h"
#include "cli/Platform.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace kes::cli {

Scratch::Scratch(const std::string& content) : mPath(CreateScratchFile()) {
    std::ofstream file(mPath, std::ios::binary);
    file << content;
    file.close();
    if (!mPath.empty() && file) return;
    const std::string reason = std::strerror(errno);
    std::error_code ignored;
    std::filesystem::remove(mPath, ignored);
    throw Failure(EXIT_SYSTEM, "no temporary file can be written: " + reason);
}

Scratch::~Scratch() {
    std::error_code ignored;
    std::filesystem::remove(mPath, ignored);
}

}  // namespace kes::cli
