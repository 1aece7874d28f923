#include "model/CStoreInfo.h"

namespace VemoKesConfigTools {

void ClearStoreList(std::list<CStoreInfo*>& stores) {
    for (const CStoreInfo* store : stores) delete store;
    stores.clear();
}

}  // namespace VemoKesConfigTools
