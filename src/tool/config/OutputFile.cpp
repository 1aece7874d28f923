#include "tool/config/OutputFile.h"

#include "files/FolderSet.h"
#include "files/ReplaceFile.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/image/ImageFormat.h"
#include "tool/output/Diagnostics.h"
#include "tool/output/ExitCodes.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace kes::tool {

namespace files = VemoKesConfigTools::files;

namespace {

constexpr std::string_view SQLITE_MAGIC("SQLite format 3\0", 16);

/// What a content looks like, for messages.
std::string NameOfContent(const std::string& content) {
    if (VemoKesConfigTools::IsChunk(content)) return "a chunk file";
    if (content.starts_with(VemoKesConfigTools::IMAGE_MAGIC)) return "a device image";
    if (content.starts_with(SQLITE_MAGIC)) return "a database";
    if (Json::accept(content)) return "a JSON file";
    return "another kind of file";
}

}  // namespace

bool IsStandardOutput(const std::string& path) {
    constexpr std::string_view NAMES[] = {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"};
    return std::ranges::find(NAMES, path) != std::end(NAMES);
}

OutputFile::OutputFile(const Settings& settings, const std::string& path, const Kind& kind,
                       OutputOptions options)
    : mSettings(settings), mPath(path), mOptions(options) {
    try {
        mLock = files::FileLock(path, files::LockMode::EXCLUSIVE, settings.lockWait);
        const auto status = files::Look(path);
        if (!status) return;
        if (status->kind == files::FileKind::FOLDER) throw Failure(EXIT_SYSTEM, path + ": is a directory");
        if (status->kind == files::FileKind::BLOCK_DEVICE)
            throw Failure(EXIT_USAGE, path + ": is a block device");
        mIsStream = status->kind != files::FileKind::REGULAR;
        if (mIsStream) return;
        mBefore = files::ReadFile(path, files::Readable::REGULAR_FILES);
    } catch (const files::FileError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
    if (options.force || mBefore->bytes.empty() || kind.fits(mBefore->bytes)) return;
    throw Failure(EXIT_USAGE, path + ": is " + NameOfContent(mBefore->bytes) + ", not " + kind.name +
                                  "; nothing was written, --force replaces it");
}

void OutputFile::Write(std::string_view content, const files::FileContent* expected) const {
    try {
        if (mIsStream) return files::WriteThrough(mPath, content);
        files::ReplaceOptions options;
        options.force = mOptions.force;
        options.expected = expected != nullptr ? expected : mBefore ? &*mBefore : nullptr;
        options.isNew = options.expected == nullptr;
        options.lockWait = mSettings.lockWait;
        for (const std::string& note : files::ReplaceFile(mPath, content, options))
            Diagnostics(mSettings.noColor).Report(mPath, "note", note);
    } catch (const files::FileError& error) {
        if (error.Action() == files::FileAction::REFUSED)
            throw Failure(EXIT_USAGE, std::string(error.what()) + ", --force replaces it");
        throw Failure(EXIT_SYSTEM, error.what());
    }
}

void CheckChunkFolder(const std::string& folder) {
    try {
        if (!files::Look(folder)) return;
        for (const files::SetEntry& entry : files::ListSet(folder, VemoKesConfigTools::CHUNK_EXTENSION)) {
            const std::string content = files::ReadSetFile(folder, entry);
            if (content.empty() || VemoKesConfigTools::IsChunk(content)) continue;
            throw Failure(EXIT_USAGE,
                          files::Join(folder, entry.name) + ": is " + NameOfContent(content) +
                              ", not a chunk file; nothing was written, remove it or use --force");
        }
    } catch (const files::FileError& error) {
        throw Failure(EXIT_SYSTEM, error.what());
    }
}

OutputFile::Kind ConfigTextKind(const Settings& settings, const ConfigLoader& loader) {
    return {"a configuration text", [&](const std::string& content) {
                const VemoKesConfigTools::CTextIndex index(content, settings.database,
                                                           Text(loader.Chip()->SystemVersionLabel()));
                // Blanks and comments alone are as good as nothing.
                return index.Lines().empty() ||
                       std::ranges::any_of(index.Lines(), [](const auto& line) { return line.error == 0; });
            }};
}

OutputFile::Kind DatabaseKind() {
    return {"a database", [](const std::string& content) { return content.starts_with(SQLITE_MAGIC); }};
}

OutputFile::Kind JsonKind() {
    return {"a JSON file", [](const std::string& content) { return Json::accept(content); }};
}

}  // namespace kes::tool
