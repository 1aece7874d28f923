#include "plugins/packint/CPackintWriter.h"

#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/SafeFile.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>

namespace VemoKesConfigTools {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(std::string_view text, const fs::path& path, const std::error_code& reason) {
    throw Refusal(text, path.string() + ": " + reason.message());
}

bool IsChunkFile(const fs::path& path) {
    constexpr std::size_t ENOUGH = 16;
    std::string bytes(ENOUGH, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(ENOUGH));
    return IsChunk(bytes);
}

/// The chunk files of a folder that a save does not write again.
std::vector<fs::path> Leftovers(const fs::path& folder, const std::set<std::string>& written) {
    std::vector<fs::path> leftovers;
    std::error_code failed;
    for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const fs::path& path = entry->path();
        std::error_code ignored;
        if (path.extension() == CHUNK_EXTENSION && !written.contains(path.filename().string()) &&
            entry->is_regular_file(ignored) && IsChunkFile(path))
            leftovers.push_back(path);
    }
    if (failed) Fail(STR_DIR_READ_ERR, folder, failed);
    return leftovers;
}

}  // namespace

void CPackintWriter::Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& /*subject*/) {
    if (!context.TagMatches(STR_FILE_MODE, STR_FILE_MODE_DIR))
        throw Refusal(STR_OPERATION_INVALID, mFolder + ": chunk files are written to a folder");
    const fs::path folder(mFolder);
    std::error_code failed;
    if (!fs::exists(folder, failed) && !fs::create_directory(folder, failed))
        Fail(STR_FILE_OPEN_ERR, folder, failed);
    if (!fs::is_directory(folder, failed))
        Fail(STR_FILE_OPEN_ERR, folder, std::make_error_code(std::errc::not_a_directory));

    FileReplacement files;
    std::set<std::string> written;
    for (const EncodedPlace& place : places) {
        if (place.keyCount == 0) continue;
        const std::string name = ChunkFileName(place.place);
        files.Add((folder / name).string(), EncodeChunk({context.Chip(), place}));
        written.insert(name);
    }
    const std::vector<fs::path> leftovers = Leftovers(folder, written);
    files.Commit();
    for (const fs::path& path : leftovers) {
        if (!fs::remove(path, failed) && failed) Fail(STR_FILE_WRITE_ERR, path, failed);
    }
}

}  // namespace VemoKesConfigTools
