#include "plugins/keseeprom/CEepromWriter.h"

#include "files/FileLock.h"
#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageLayout.h"
#include "plugins/image/ImageSave.h"
#include "plugins/image/ImageSite.h"
#include "plugins/image/SystemCheck.h"

#include <charconv>
#include <cstdint>

namespace VemoKesConfigTools {

namespace {

/// The number in a tag; 0 if the tag is empty.
std::int32_t NumberOf(const CKesContext& context, std::string_view tag) {
    const std::string text = context.GetTag(tag);
    std::int32_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (!text.empty() && (error != std::errc() || stop != end))
        throw Refusal(STR_OPERATION_INVALID,
                      std::string(tag) + " is \"" + text + "\", which is not a number");
    return number;
}

/// The requested size in bytes; 0 to use that of the device.
std::uint32_t WantedSize(const CKesContext& context) {
    constexpr std::int32_t MOST_EXPONENT = 26;
    static_assert(1U << static_cast<unsigned>(MOST_EXPONENT) == MOST_IMAGE_SIZE);
    const std::int32_t exponent = NumberOf(context, STR_EEPROM_SIZE_EXP);
    if (exponent > MOST_EXPONENT) {
        throw Refusal(STR_OPERATION_INVALID, "2^" + std::to_string(exponent) +
                                                 " bytes are requested, an image has at most 2^" +
                                                 std::to_string(MOST_EXPONENT));
    }
    return exponent > 0 ? 1U << static_cast<unsigned>(exponent) : 0;
}

void ExpectSize(std::uint64_t size, std::uint32_t wanted) {
    if (wanted == 0 || size == wanted) return;
    throw Refusal(STR_OPERATION_INVALID,
                  "has " + std::to_string(size) + " bytes, " + std::to_string(wanted) + " are requested");
}

void ExpectMask(std::uint32_t mask, std::uint32_t wanted) {
    if (wanted == 0 || mask == wanted) return;
    throw Refusal(STR_OPERATION_INVALID, "has the I2C mask " + std::to_string(mask) + ", " +
                                             std::to_string(wanted) + " is requested");
}

}  // namespace

void CEepromWriter::Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) {
    subject = mConnection;
    const std::string path = PathOfConnection(mConnection);
    const std::uint32_t wantedSize = WantedSize(context);
    const std::int32_t maskNumber = NumberOf(context, STR_EEPROM_I2C_MASK);
    const std::uint32_t mask = maskNumber > 0 ? static_cast<std::uint32_t>(maskNumber) : 0;

    // Locked first: what is found here must still be there when it is written.
    const files::FileLock lock(path, files::LockMode::EXCLUSIVE);
    const ImageSite site = LookAtSite(path);
    if (site.state == SiteState::Other)
        throw Refusal(STR_OPERATION_INVALID, "is neither blank nor a device image");
    // A missing file without a size is left to `DeviceImage`, which reports that it cannot be opened.
    const bool isMade =
        site.state == SiteState::Blank || (site.state == SiteState::Missing && wantedSize != 0);
    if (!isMade) {
        DeviceImage image(path, files::LockMode::EXCLUSIVE, ImageFamily::Eeprom);
        ExpectSize(image.Header().size, wantedSize);
        ExpectMask(image.Header().i2cMask, mask);
        ExpectChip(image.Header(), Provider(), context);
        SavePlaces(image, places, {SaveKeeps::Nothing, false, context.Chip()});
        return;
    }
    if (site.state == SiteState::Blank) ExpectSize(site.size, wantedSize);
    if (site.size > MOST_IMAGE_SIZE) throw Refusal(STR_OPERATION_INVALID, "is too large for a device image");
    ImageGeometry geometry;
    geometry.chipId = ChipIdOf(Provider(), context);
    geometry.systemLabel = context.Chip();
    geometry.size = wantedSize == 0 ? static_cast<std::uint32_t>(site.size) : wantedSize;
    geometry.i2cMask = mask;
    PutImage(path, site, RenderImage(LayOut(geometry), {EncodeContent(places)}));
}

}  // namespace VemoKesConfigTools
