#include "tool/config/ConfigInput.h"

#include "files/Files.h"
#include "files/FolderSet.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageInfo.h"
#include "tool/config/ConfigAccess.h"
#include "tool/output/ExitCodes.h"

#include <algorithm>
#include <utility>

namespace kes::tool {

namespace api = VEMO::Kes::ConfigurationTools;
namespace files = VemoKesConfigTools::files;

namespace {

files::FileLock LockFor(const ConfigSource& source, InputAccess access, std::chrono::milliseconds wait) {
    const bool isPlainText = source.IsText() && access != InputAccess::CHANGE;
    if (access == InputAccess::PEEK || isPlainText || source.IsStandardInput()) return {};
    const auto mode = access == InputAccess::CHANGE ? files::LockMode::EXCLUSIVE : files::LockMode::SHARED;
    return {PathOf(source), mode, wait};
}

/// All chunk files of a folder. The library passes over what it cannot read; here nobody may take a part for
/// the whole.
std::vector<api::ChunkContent> ReadChunks(const std::string& folder) {
    std::vector<api::ChunkContent> chunks;
    for (const files::SetEntry& entry : files::ListSet(folder, VemoKesConfigTools::CHUNK_EXTENSION)) {
        chunks.push_back({files::Join(folder, entry.name), files::ReadSetFile(folder, entry)});
        if (!chunks.back().bytes.empty()) continue;
        throw files::FileError(files::FileAction::READ, chunks.back().name, "the file is empty");
    }
    return chunks;
}

}  // namespace

std::string PathOf(const ConfigSource& source) {
    if (!source.IsDevice()) return source.target;
    try {
        return VemoKesConfigTools::PathOfConnection(source.target);
    } catch (const VemoKesConfigTools::Refusal&) {
        // The plug-in will say what is wrong with it.
        return source.target;
    }
}

ConfigInput::ConfigInput(ConfigSource source, InputAccess access, std::chrono::milliseconds lockWait)
    : mSource(std::move(source)) {
    try {
        mLock = LockFor(mSource, access, lockWait);
        if (mSource.kind == ConfigKind::CHUNKS) mChunks = ReadChunks(mSource.target);
    } catch (const files::FileError& error) {
        throw Failure(EXIT_SYSTEM,
                      error.Path() == mSource.target ? error.Reason() : std::string(error.what()));
    }
    if (mSource.IsText()) mText.emplace(mSource.target);
}

ConfigInput::ConfigInput(ConfigSource source, const std::string& content, files::FileLock lock)
    : mSource(std::move(source)), mLock(std::move(lock)) {
    mText.emplace(mSource.target, content);
}

std::uint64_t ConfigInput::SizeOf(const ConfigSource& source) {
    return source.IsText() ? TextFile::SizeOf(source.target) : 0;
}

std::string ConfigInput::System() const {
    if (mText) return mText->Version();
    if (mSource.IsDevice()) return VemoKesConfigTools::SystemOfImage(mSource.target).value_or(std::string());
    // The first by name that tells one.
    const api::ChunkContent* first = nullptr;
    for (const api::ChunkContent& chunk : mChunks) {
        const bool isEarlier = first == nullptr || chunk.name < first->name;
        if (isEarlier && VemoKesConfigTools::SystemOfChunk(chunk.bytes)) first = &chunk;
    }
    return first == nullptr ? std::string() : *VemoKesConfigTools::SystemOfChunk(first->bytes);
}

bool ConfigInput::Load(api::FrameworkFacade& facade) const {
    if (mText) return facade.LoadTextFromMemory(mText->Content(), /*merge=*/false);
    if (mSource.kind == ConfigKind::CHUNKS) return facade.LoadBinaryFromMemory(mChunks, /*merge=*/false);
    return LoadDevice(facade, mSource);
}

ConfigInput OpenConfig(const Settings& settings, const ConfigSource& source, InputAccess access) {
    try {
        return {source, access, settings.lockWait};
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), source.word + ": " + failure.what());
    }
}

}  // namespace kes::tool
