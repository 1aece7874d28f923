#include "cli/Platform.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace kes::cli {

std::string ExecutablePath() {
    std::error_code failed;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? std::string() : path.string();
}

bool ErrorsGoToTerminal() { return isatty(STDERR_FILENO) == 1; }

bool SyncAndRename(const std::string& from, const std::string& to) {
    const int file = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool synced = fsync(file) == 0;
    return close(file) == 0 && synced && std::rename(from.c_str(), to.c_str()) == 0;
}

std::string TemporaryBeside(const std::string& path) { return path + ".tmp" + std::to_string(getpid()); }

}  // namespace kes::cli
