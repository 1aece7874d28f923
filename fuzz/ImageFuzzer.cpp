// Any bytes as a device image, as they are and with sizes and checksums put right: they are refused whole, or
// taken; a second read gives the same, and a save changes nothing or leaves what was read.

#include "BinaryFixture.h"
#include "ImageRepair.h"
#include "plugins/binary/CBinaryWriter.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/CImageReader.h"
#include "plugins/image/DeviceImage.h"
#include "plugins/image/ImageInfo.h"
#include "plugins/image/ImageSave.h"
#include "support/TempFolder.h"

#include <vector>

namespace {

using namespace KesFuzz;

/// Saves as the writers of the families do.
class ImageWriter final : public CBinaryWriter {
public:
    explicit ImageWriter(std::string path) : mPath(std::move(path)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& /*subject*/) override {
        DeviceImage image(mPath, files::LockMode::EXCLUSIVE);
        SavePlaces(image, places, {SaveKeeps::Nothing, /*reset=*/true, context.Chip()});
    }

private:
    std::string mPath;
};

std::unique_ptr<CChipConfig> Read(const std::string& path, ImageFamily family) {
    CImageReader reader(path, family);
    return Taken(reader, SystemOfImage(path).value_or("sys_1_0"));
}

/// Whether it was taken.
bool Save(CChipConfig& config, const std::string& path) {
    const Messages messages;
    ImageWriter writer(path);
    writer.SetMetadataProvider(&Keys());
    CKesContext context;
    context.SetChip(SystemOfImage(path).value_or("sys_1_0"));
    config.Write(writer, context);
    return Messages::LastError().empty();
}

void Check(const std::string& bytes) {
    static const TempFolder folder;
    const std::string path = folder.Write("device.img", bytes);
    const ImageFamily family = FamilyOf(bytes);
    const auto config = Read(path, family);
    if (!config) return;
    const auto second = Read(path, family);
    if (!second || Dump(*config) != Dump(*second))
        Fault("a second read differs", Dump(*config), second ? Dump(*second) : Messages::LastError());
    ReadImageInfo(path);

    if (!Save(*config, path)) {
        if (KesTest::ReadFile(path) != bytes)
            Fault("a refused save has changed the image", Dump(*config), {});
        return;
    }
    const auto saved = Read(path, family);
    if (!saved) Fault("the saved image is refused", Dump(*config), Messages::LastError());
    ExpectSame("another model after a save", *config, *saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Check(bytes);
    Check(RepairedImage(bytes));
    return 0;
}
