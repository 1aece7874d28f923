#include "model/CStoreInfo.h"

namespace VemoKesConfigTools {

void CStoreInfo::FillFrom(const CStoreInfo& known) {
    if (mFreeSize == -1) mFreeSize = known.mFreeSize;
    if (mStoreSize != UNKNOWN_SIZE) return;
    mStoreSize = known.mStoreSize;
    mLinkedStoreId = known.mLinkedStoreId;
    mPaired = known.mPaired;
}

void ClearStoreList(std::list<CStoreInfo*>& stores) {
    for (const CStoreInfo* store : stores) delete store;
    stores.clear();
}

}  // namespace VemoKesConfigTools
