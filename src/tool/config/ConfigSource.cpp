#include "tool/config/ConfigSource.h"

#include "files/Files.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"

namespace kes::tool {

namespace {

bool IsFolder(const std::string& path) {
    namespace files = VemoKesConfigTools::files;
    try {
        const auto status = files::Look(path);
        return status && status->kind == files::FileKind::FOLDER;
    } catch (const files::FileError&) {
        return false;
    }
}

}  // namespace

ConfigSource::ConfigSource(const std::string& given) : word(given), target(given) {
    for (const ConfigPrefix& prefix : CONFIG_PREFIXES) {
        if (!given.starts_with(prefix.word)) continue;
        kind = prefix.kind;
        target = given.substr(prefix.word.size());
        if (!target.empty()) {
            CheckPath();
            return;
        }
        throw Failure(EXIT_USAGE, "\"" + given + "\" names nothing: the path stands behind it");
    }
    if (given.ends_with('/') || IsFolder(given)) kind = ConfigKind::CHUNKS;
    CheckPath();
}

/// The library is given the paths of folders and devices in UTF-8; texts are read by the command.
void ConfigSource::CheckPath() const {
    if (!IsText()) CheckUtf8(target);
}

}  // namespace kes::tool
