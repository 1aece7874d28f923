#include "cli/ConfigSource.h"

#include "cli/ExitCodes.h"

#include <filesystem>

namespace kes::cli {

ConfigSource::ConfigSource(const std::string& given) : word(given), target(given) {
    for (const ConfigPrefix& prefix : CONFIG_PREFIXES) {
        if (!given.starts_with(prefix.word)) continue;
        kind = prefix.kind;
        target = given.substr(prefix.word.size());
        if (!target.empty()) return;
        throw Failure(EXIT_USAGE, "\"" + given + "\" names nothing: the path stands behind it");
    }
    std::error_code failed;
    if (given.ends_with('/') || std::filesystem::is_directory(given, failed)) kind = ConfigKind::CHUNKS;
}

}  // namespace kes::cli
