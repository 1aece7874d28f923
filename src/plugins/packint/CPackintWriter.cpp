#include "plugins/packint/CPackintWriter.h"

#include "files/Files.h"
#include "files/FolderSet.h"
#include "messages/CTheMsgHnd.h"
#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/binary/Refusal.h"

#include <set>

namespace VemoKesConfigTools {

namespace {

/// The chunk files of a folder that the save does not write. Only files that begin like a chunk file count:
/// others may have the extension by chance and must not be removed.
std::vector<std::string> Leftovers(const std::string& folder, const std::set<std::string>& written) {
    constexpr std::size_t ENOUGH = 16;
    std::vector<std::string> leftovers;
    for (const files::SetEntry& entry : files::ListSet(folder, CHUNK_EXTENSION)) {
        const auto status = files::Look(entry.path);
        const bool isFile = status && status->kind == files::FileKind::REGULAR;
        if (isFile && !written.contains(entry.name) && IsChunk(files::ReadStart(entry.path, ENOUGH)))
            leftovers.push_back(entry.name);
    }
    return leftovers;
}

}  // namespace

void CPackintWriter::Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& /*subject*/) {
    if (!context.TagMatches(STR_FILE_MODE, STR_FILE_MODE_DIR))
        throw Refusal(STR_OPERATION_INVALID, mFolder + ": chunk files are written to a folder");
    // Locks the folder before it is listed, so that no other save changes it in between.
    files::SetWriter writer(mFolder);
    files::SetChange change;
    std::set<std::string> written;
    for (const EncodedPlace& place : places) {
        if (place.keyCount == 0) continue;
        change.files.push_back({ChunkFileName(place.place), EncodeChunk({context.Chip(), place})});
        written.insert(change.files.back().name);
    }
    change.removed = Leftovers(mFolder, written);
    for (const std::string& note : writer.Commit(change)) {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "CPackintWriter::Save", false)
            .NotifyStatus(CMessageHandler::STATUS_LEVEL_WARNING, note);
    }
}

}  // namespace VemoKesConfigTools
