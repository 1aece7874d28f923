#include "plugins/kld770x/CKldStoreManager.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageStores.h"

#include <algorithm>

namespace VemoKesConfigTools {

void CKldStoreManager::CreateStore(CStoreInfo& store, IConfigContext& /*context*/) {
    try {
        DeviceImage image(PathOfConnection(mConnection), ImageFile::Access::Writing, ImageFamily::Kld);
        MakeStore(image, store);
    } catch (const Refusal& refusal) {
        Report("CKldStoreManager::CreateStore", refusal, mConnection);
    }
}

void CKldStoreManager::RefreshStoreInfo(CStoreInfo& store, IConfigContext& context) {
    const std::list<CStoreInfo*>& stores = GetStoresInfo(context);
    const auto found = std::ranges::find_if(stores, [&](const CStoreInfo* known) {
        return known->DeviceId() == store.DeviceId() && known->StoreId() == store.StoreId();
    });
    if (found != stores.end()) store = **found;
}

const std::list<CStoreInfo*>& CKldStoreManager::GetStoresInfo(IConfigContext& /*context*/) {
    ClearStoreList(mStores);
    try {
        const DeviceImage image(PathOfConnection(mConnection), ImageFile::Access::Reading, ImageFamily::Kld);
        for (const CStoreInfo& store : StoreInfosOf(image, PlacesByStore(image)))
            mStores.push_back(new CStoreInfo(store));
    } catch (const Refusal& refusal) {
        Report("CKldStoreManager::GetStoresInfo", refusal, mConnection);
    }
    return mStores;
}

}  // namespace VemoKesConfigTools
