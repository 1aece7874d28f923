// Configurations as folders of chunk files.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "files/Files.h"
#include "files/FolderSet.h"
#include "model/CChipConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

constexpr const char* NO_CHUNKS = "Folder does not contain readable *.kcf files. No config data found.";

/// The chunk files of a folder in the order of the file system. Throws for a folder that cannot be listed.
std::vector<files::SetEntry> ChunkFilesOf(const std::string& folder) {
    try {
        return files::ListSet(folder, ".kcf");
    } catch (const files::FileError& error) {
        // Hosts catch this exception; `FileError` is internal.
        throw std::filesystem::filesystem_error(error.Reason(), folder,
                                                std::error_code(error.Number(), std::generic_category()));
    }
}

}  // namespace

/// Prepares a load of chunk files. Returns false and stores an error if something it needs is missing.
bool FrameworkFacade::BeginBinaryLoad(const char* function, bool merge) {
    DefaultHandler(function).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!mpProvider) return Fail(function, ERROR_PLUGIN, NO_PROVIDER);
    if (!mpBinaryReader) return Fail(function, ERROR_PLUGIN, PACKINT.absent);
    if (!mOwningChip) return Fail(function, ERROR_DATA, NO_CHIP);
    EmptyBuffer();
    if (!merge) mpFileChip->PrepareForChip(mOwningChip->ChipId());
    return true;
}

/// Reads the chunk file in the buffer.
bool FrameworkFacade::ReadChunk(const std::string& name) {
    CKesContext context = LoadContext();
    // The reader only has a stream; the name is for its messages.
    context.SetTag(STR_INPUT_FILE, name);
    return mpBinaryReader->Read(context);
}

bool FrameworkFacade::LoadBinary(const HostString& folderPath, bool merge) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadBinary");
    if (!BeginBinaryLoad(FUNCTION, merge)) return false;
    const std::string folder = Framework::GetString(folderPath);
    if (folder.empty()) return FailWithout(FUNCTION, PACKINT, folder);

    bool anyRead = false;
    bool good = false;
    for (const files::SetEntry& file : ChunkFilesOf(folder)) {
        if (!FillBuffer(FUNCTION, [&] { return files::ReadSetFile(folder, file); })) continue;
        good = ReadChunk(files::Join(folder, file.name));
        anyRead = true;
    }
    return anyRead ? good : Fail(FUNCTION, ERROR_DATA, NO_CHUNKS);
}

bool FrameworkFacade::LoadBinaryFromMemory(const std::vector<ChunkContent>& files, bool merge) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadBinaryFromMemory");
    if (!BeginBinaryLoad(FUNCTION, merge)) return false;
    bool anyRead = false;
    bool good = false;
    for (const ChunkContent& file : files) {
        if (file.bytes.empty()) continue;
        mpBuffer->str(file.bytes);
        good = ReadChunk(file.name);
        anyRead = true;
    }
    return anyRead ? good : Fail(FUNCTION, ERROR_DATA, NO_CHUNKS);
}

bool FrameworkFacade::SaveBinary(const HostString& folderPath) {
    const std::unique_ptr<IConfigWriter> writer =
        BeginSave(KES_FACADE_FUNCTION("SaveBinary"), PACKINT, folderPath, nullptr);
    if (!writer) return false;
    CKesContext context = FileContext(*mOwningChip);
    context.SetTag(STR_FILE_MODE, STR_FILE_MODE_DIR);
    return mpFileChip->Write(*writer, context);
}

}  // namespace VEMO::Kes::ConfigurationTools
