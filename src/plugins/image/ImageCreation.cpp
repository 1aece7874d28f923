#include "plugins/image/ImageCreation.h"

#include "files/FileLock.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageLayout.h"
#include "plugins/image/ImageSite.h"

namespace VemoKesConfigTools {

std::string_view NameOf(ImageFamily family) {
    switch (family) {
        case ImageFamily::Eeprom:
            return "eeprom";
        case ImageFamily::Isp:
            return "isp";
        case ImageFamily::Kld:
            return "kld";
    }
    return "unknown";
}

void CreateImage(const std::string& connection, const ImageGeometry& geometry, bool force) {
    const std::string path = PathOfConnection(connection);
    // An invalid geometry is found here, before the file is touched.
    const std::string bytes = RenderImage(LayOut(geometry), {});
    const files::FileLock lock(path, files::LockMode::EXCLUSIVE);
    const ImageSite site = LookAtSite(path);
    if (site.isBlockDevice && site.size != geometry.size) {
        throw Refusal(STR_OPERATION_INVALID, "is a block device of " + std::to_string(site.size) +
                                                 " bytes, not of " + std::to_string(geometry.size));
    }
    if (!force && site.state == SiteState::Image)
        throw Refusal(STR_OPERATION_INVALID, "a device image already exists");
    if (!force && site.state == SiteState::Other)
        throw Refusal(STR_OPERATION_INVALID,
                      "a file already exists that is neither blank nor a device image");
    if (!force && site.state == SiteState::Blank && site.size != geometry.size) {
        throw Refusal(STR_OPERATION_INVALID, "is a blank file of " + std::to_string(site.size) +
                                                 " bytes, not of " + std::to_string(geometry.size));
    }
    PutImage(path, site, bytes);
}

std::string TextOf(const Refusal& refusal, const std::string& connection) {
    return std::string(refusal.Text()) + ": " + connection + ": " + refusal.what();
}

}  // namespace VemoKesConfigTools
