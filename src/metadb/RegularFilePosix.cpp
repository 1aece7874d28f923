#include "metadb/RegularFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VemoKesConfigTools::metadb {

std::string WhyNoRegularFile(const std::string& path) {
    // Check the open file, not the path, which another program could replace between two calls.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return std::string("cannot be opened: ") + std::strerror(errno);
    struct stat status {};
    const bool known = fstat(file, &status) == 0;
    close(file);
    if (known && S_ISREG(status.st_mode)) return {};
    return known && S_ISDIR(status.st_mode) ? "is a directory" : "is not a regular file";
}

}  // namespace VemoKesConfigTools::metadb
