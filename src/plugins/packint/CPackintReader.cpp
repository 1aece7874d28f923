#include "plugins/packint/CPackintReader.h"

#include "files/Files.h"
#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/binary/Refusal.h"

namespace VemoKesConfigTools {

namespace {

/// Whether the reader of texts reports stores of this device as well.
bool IsStore(std::int32_t device) {
    return device == IStoreManager::DEVICE_OTP || device == IStoreManager::DEVICE_MTP ||
           device == IStoreManager::DEVICE_SMEM || device == IStoreManager::DEVICE_EEPROM;
}

}  // namespace

std::string CPackintReader::Content() const {
    if (mpStream == nullptr) return files::ReadFile(mFileName, files::Readable::REGULAR_FILES).bytes;
    // An earlier read may have left the stream at its end, with `eofbit` set.
    mpStream->clear();
    mpStream->seekg(0, std::ios::end);
    const std::streamoff size = mpStream->tellg();
    std::string content(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    mpStream->seekg(0);
    mpStream->read(content.data(), static_cast<std::streamsize>(content.size()));
    if (mpStream->gcount() != static_cast<std::streamsize>(content.size()))
        throw Refusal(STR_FILE_READ_ERR, "the stream ends too early");
    return content;
}

std::vector<EncodedPlace> CPackintReader::Collect(CKesContext& context, std::string& subject) {
    subject = mpStream == nullptr ? mFileName : context.GetTag(STR_INPUT_FILE);
    Chunk chunk = DecodeChunk(Content());
    if (chunk.system != context.Chip()) {
        throw Refusal(STR_OPERATION_INVALID,
                      "is for system " + chunk.system + ", the configuration is for " + context.Chip());
    }
    const BinaryPlace& place = chunk.place.place;
    if (IsStore(place.device)) {
        // A chunk file does not contain the size of the store.
        constexpr std::int32_t UNKNOWN_SIZE = -1;
        AddStore({static_cast<IStoreManager::DEVICE>(place.device), static_cast<std::uint16_t>(place.store),
                  static_cast<std::uint32_t>(UNKNOWN_SIZE), UNKNOWN_SIZE, 0, place.order, false});
    }
    std::vector<EncodedPlace> places;
    places.push_back(std::move(chunk.place));
    return places;
}

}  // namespace VemoKesConfigTools
