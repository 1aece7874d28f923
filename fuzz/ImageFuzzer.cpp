// Any bytes as a device image, as they are and with sizes and checksums put right: they are refused whole, or
// taken; a second read gives the same, and a save changes nothing or leaves what was read.

#include "BinaryFixture.h"
#include "plugins/binary/Bytes.h"
#include "plugins/binary/CBinaryWriter.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/CImageReader.h"
#include "plugins/image/DeviceImage.h"
#include "plugins/image/ImageInfo.h"
#include "plugins/image/ImageSave.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

using namespace KesFuzz;

/// Saves as the writers of the families do.
class ImageWriter final : public CBinaryWriter {
public:
    explicit ImageWriter(std::string path) : mPath(std::move(path)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& /*subject*/) override {
        DeviceImage image(mPath, ImageFile::Access::Writing);
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
    constexpr std::size_t FAMILY = 10;
    constexpr unsigned FAMILIES = 3;
    const unsigned number = bytes.size() <= FAMILY ? 0 : static_cast<unsigned char>(bytes[FAMILY]) - 1U;
    const auto family = static_cast<ImageFamily>(number % FAMILIES + 1);
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

std::uint32_t Get(const std::string& bytes, std::size_t at) {
    return ByteReader(std::string_view(bytes).substr(at)).Fixed<std::uint32_t>();
}

void Put(std::string& bytes, std::size_t at, std::uint32_t value) {
    std::string field;
    ByteWriter(field).Fixed(value);
    bytes.replace(at, field.size(), field);
}

/// Sets the checksum that stands behind `size` bytes.
void Seal(std::string& bytes, std::size_t at, std::size_t size) {
    Put(bytes, at + size, Crc32(std::string_view(bytes).substr(at, size)));
}

constexpr std::size_t HEAD_OF_BANK = 12;

/// Makes a bank of the bytes that lie where the current content of a store should be.
void RepairStore(std::string& bytes, const StoreRecord& store, bool oneTime, std::size_t record) {
    constexpr std::size_t CHECKSUM_IN_RECORD = 28;
    for (const std::uint32_t half : {1U, 0U}) {
        if (half == 1 && !store.paired) continue;
        const std::size_t bank =
            oneTime ? store.offset + store.current : store.BankOffset(half, store.current);
        bytes.replace(bank, 4, "KBNK");
        Put(bytes, bank + 4, store.sequence);
        Put(bytes, bank + 8, store.length);
        Seal(bytes, bank, HEAD_OF_BANK + store.length);
        Put(bytes, record + CHECKSUM_IN_RECORD,
            Crc32(std::string_view(bytes).substr(bank + HEAD_OF_BANK, store.length)));
    }
}

/// The bytes with all magic numbers, sizes and checksums put right as far as the rest makes sense.
std::string Repaired(std::string bytes) {
    constexpr std::size_t VERSION = 8;
    constexpr std::size_t SIZE = 16;
    constexpr std::size_t HEAD_CHECKED = 160;
    bytes.resize(std::max<std::size_t>(bytes.size(), HEAD_SIZE));
    bytes.replace(0, IMAGE_MAGIC.size(), IMAGE_MAGIC);
    bytes.replace(VERSION, 2, std::string("\1\0", 2));
    Put(bytes, SIZE, static_cast<std::uint32_t>(bytes.size()));
    const char selector = bytes[SELECTOR_OFFSET];
    if (selector != SelectorOf(0) && selector != SelectorOf(1)) bytes[SELECTOR_OFFSET] = SelectorOf(0);
    Seal(bytes, 0, HEAD_CHECKED);
    try {
        const ImageHeader header = DecodeHeader(bytes, bytes.size());
        const std::size_t start = header.directoryOffset + std::size_t{header.directoryBankSize} *
                                                               BankOfSelector(bytes[SELECTOR_OFFSET]);
        if (header.directoryBankSize < HEAD_OF_BANK) return bytes;
        bytes.replace(start, 4, "KDIR");
        const std::size_t used = std::size_t{8} + Get(bytes, start + 4);
        if (used + 4 > header.directoryBankSize) return bytes;
        Seal(bytes, start, used);
        const std::string bank = bytes.substr(start, header.directoryBankSize);
        const std::vector<StoreRecord> stores = DecodeDirectory(bank, header).stores;
        std::size_t record = start + used - stores.size() * STORE_RECORD_SIZE;
        for (const StoreRecord& store : stores) {
            if (store.sequence != 0)
                RepairStore(bytes, store, header.MemoryOf(store.device)->oneTimeProgrammable, record);
            record += STORE_RECORD_SIZE;
        }
        Seal(bytes, start, used);
    } catch (const Refusal&) {
        // What makes no sense is as good an input as it is.
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Check(bytes);
    Check(Repaired(bytes));
    return 0;
}
