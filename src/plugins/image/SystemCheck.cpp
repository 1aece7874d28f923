#include "plugins/image/SystemCheck.h"

#include "model/CHelper.h"
#include "model/CKesContext.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"

#include <string>

namespace VemoKesConfigTools {

std::uint16_t ChipIdOf(IMetadataProvider* provider, CKesContext& context) {
    const int id = CHelper::Ref().GetAssociatedChipId(provider, context);
    return id < 0 || id > UINT16_MAX ? std::uint16_t{0} : static_cast<std::uint16_t>(id);
}

void ExpectChip(const ImageHeader& header, IMetadataProvider* provider, CKesContext& context) {
    const std::uint16_t id = ChipIdOf(provider, context);
    // An image with id 0 fits any chip; an id of 0 in the context means that the metadata has none.
    if (header.chipId == 0 || id == 0 || header.chipId == id) return;
    throw Refusal(STR_OPERATION_INVALID, "is for chip " + std::to_string(header.chipId) + ", but " +
                                             context.Chip() + " has chip " + std::to_string(id));
}

void ExpectSystem(const ImageDirectory& directory, const CKesContext& context) {
    if (directory.systemLabel.empty() || directory.systemLabel == context.Chip()) return;
    throw Refusal(STR_OPERATION_INVALID,
                  "is for system " + directory.systemLabel + ", the configuration is for " + context.Chip());
}

}  // namespace VemoKesConfigTools
