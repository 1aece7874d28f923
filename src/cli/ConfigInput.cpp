#include "cli/ConfigInput.h"

#include "cli/ExitCodes.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/image/ImageInfo.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

namespace kes::cli {

namespace {

void CheckFolder(const std::string& path) {
    std::error_code failed;
    const std::filesystem::directory_iterator ignored(path, failed);
    if (failed) throw Failure(EXIT_SYSTEM, "cannot be opened: " + failed.message());
}

/// The system of the first chunk file by name that tells one.
std::string SystemOfFolder(const std::string& folder) {
    constexpr std::streamsize ENOUGH = 4096;
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == VemoKesConfigTools::CHUNK_EXTENSION) paths.insert(entry.path());
    }
    for (const auto& path : paths) {
        std::string bytes(ENOUGH, '\0');
        std::ifstream file(path, std::ios::binary);
        file.read(bytes.data(), ENOUGH);
        bytes.resize(static_cast<std::size_t>(file.gcount()));
        if (const auto system = VemoKesConfigTools::SystemOfChunk(bytes)) return *system;
    }
    return {};
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

std::string ConfigInput::System() const {
    if (mFile) return mFile->Version();
    if (mSource.kind == ConfigKind::CHUNKS) return SystemOfFolder(mSource.target);
    return VemoKesConfigTools::SystemOfImage(mSource.target).value_or(std::string());
}

ConfigInput OpenConfig(const ConfigSource& source) {
    try {
        return ConfigInput(source);
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), source.word + ": " + failure.what());
    }
}

}  // namespace kes::cli
