#include "cli/ConfigInput.h"

#include "cli/ExitCodes.h"

#include <filesystem>
#include <utility>

namespace kes::cli {

namespace {

void CheckFolder(const std::string& path) {
    std::error_code failed;
    const std::filesystem::directory_iterator ignored(path, failed);
    if (failed) throw Failure(EXIT_SYSTEM, "cannot be opened: " + failed.message());
}

}  // namespace

ConfigInput::ConfigInput(ConfigSource source) : mSource(std::move(source)) {
    if (mSource.kind == ConfigKind::CHUNKS) CheckFolder(mSource.target);
    if (!mSource.IsText()) return;
    mFile.emplace(mSource.target);
    mSource.target = mFile->Path();
}

ConfigInput::ConfigInput(ConfigSource source, const std::string& content) : mSource(std::move(source)) {
    mFile.emplace(mSource.target, content);
    mSource.target = mFile->Path();
}

std::uint64_t ConfigInput::SizeOf(const ConfigSource& source) {
    return source.IsText() ? TextFile::SizeOf(source.target) : 0;
}

std::string ConfigInput::System() const { return mFile ? mFile->Version() : std::string(); }

ConfigInput OpenConfig(const std::string& name) {
    const ConfigSource source(name);
    try {
        return ConfigInput(source);
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), name + ": " + failure.what());
    }
}

}  // namespace kes::cli
