// Configurations as folders of chunk files.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"

#include <filesystem>
#include <vector>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

/// The chunk files of a folder in the order of the file system. Throws for a folder that cannot be listed.
std::vector<std::string> ChunkFilesOf(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::string path = entry.path().string();
        std::error_code ignored;
        if (path.ends_with(".kcf") && entry.is_regular_file(ignored)) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace

bool FrameworkFacade::LoadBinary(const HostString& folderPath, bool merge) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadBinary");
    DefaultHandler(FUNCTION).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!mpProvider) return Fail(FUNCTION, ERROR_PLUGIN, NO_PROVIDER);
    if (!mpBinaryReader) return Fail(FUNCTION, ERROR_PLUGIN, PACKINT.absent);
    if (!mOwningChip) return Fail(FUNCTION, ERROR_DATA, NO_CHIP);
    EmptyBuffer();
    if (!merge) mpFileChip->PrepareForChip(mOwningChip->ChipId());
    const std::string folder = Framework::GetString(folderPath);
    if (folder.empty()) return FailWithout(FUNCTION, PACKINT, folder);

    bool anyRead = false;
    bool good = false;
    for (const std::string& path : ChunkFilesOf(folder)) {
        if (!FillBuffer(path)) continue;
        CKesContext context = LoadContext();
        context.SetTag(STR_INPUT_FILE, path);  // the reader sees a stream, but its messages need a name
        good = mpBinaryReader->Read(context);
        anyRead = true;
    }
    if (!anyRead) {
        return Fail(FUNCTION, ERROR_DATA,
                    "Folder does not contain readable *.kcf files. No config data found.");
    }
    return good;
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
