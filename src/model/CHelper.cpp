#include "model/CHelper.h"

#include "model/IChipInfo.h"
#include "model/IConfigContext.h"
#include "model/IMetadataProvider.h"
#include "model/Words.h"

#include <cstdlib>

namespace VemoKesConfigTools {

CHelper& CHelper::Ref() {
    static CHelper instance;
    return instance;
}

int CHelper::GetAssociatedChipId(IMetadataProvider* provider, IConfigContext& context) const {
    if (provider == nullptr) return -1;
    const std::string label = context.GetTag(STR_CHIP);
    for (const IChipInfo* chip : provider->ChipInfos(context)) {
        if (chip->SystemVersionLabel() == label) return std::atoi(chip->ChipId().c_str());
    }
    return -1;
}

}  // namespace VemoKesConfigTools
