#include "kes/configtools/readerwriters/kestext/common/textparser/CParseContext.h"

#include "model/CKesContext.h"

namespace VemoKesConfigTools {

const IMetadata& CParseContext::ByName(const std::string& name) {
    if (mpNamed == nullptr || name != mName) {
        mpNamed = &mpProvider->MetadataByName(name, *mpConfigContext, true);
        mName = name;
    }
    return *mpNamed;
}

}  // namespace VemoKesConfigTools
