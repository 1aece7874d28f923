#include "plugins/kld770x/CKldWriter.h"

#include "model/CKesContext.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageSave.h"
#include "plugins/image/SystemCheck.h"

namespace VemoKesConfigTools {

void CKldWriter::Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) {
    subject = mConnection;
    DeviceImage image(PathOfConnection(mConnection), files::LockMode::EXCLUSIVE, ImageFamily::Kld);
    ExpectChip(image.Header(), Provider(), context);
    // Without merging, nothing of another system would remain.
    if (mIsMerging) ExpectSystem(image.Directory(), context);
    SavePlaces(image, places,
               {mIsMerging ? SaveKeeps::OtherKeys : SaveKeeps::Nothing, /*reset=*/false, context.Chip()});
}

}  // namespace VemoKesConfigTools
