#include "plugins/kesisp/CIspWriter.h"

#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageSave.h"
#include "plugins/image/SystemCheck.h"

namespace VemoKesConfigTools {

void CIspWriter::Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) {
    subject = mConnection;
    DeviceImage image(PathOfConnection(mConnection), files::LockMode::EXCLUSIVE, ImageFamily::Isp);
    ExpectChip(image.Header(), Provider(), context);
    // Store sets that are not written keep their content, which must be of the same system.
    ExpectSystem(image.Directory(), context);
    const bool reset = context.TagMatches(STR_RESET_DEVICE_AFTER, STR_TRUE);
    SavePlaces(image, places, {SaveKeeps::OtherStores, reset, context.Chip()});
}

}  // namespace VemoKesConfigTools
