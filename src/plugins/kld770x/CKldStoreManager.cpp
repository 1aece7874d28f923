#include "plugins/kld770x/CKldStoreManager.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/ImageStores.h"

#include <algorithm>

namespace VemoKesConfigTools {

void CKldStoreManager::CreateStore(CStoreInfo& store, IConfigContext& /*context*/) {
    Reporting("CKldStoreManager::CreateStore", mConnection, [&] {
        DeviceImage image(PathOfConnection(mConnection), files::LockMode::EXCLUSIVE, ImageFamily::Kld);
        MakeStore(image, store);
    });
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
    Reporting("CKldStoreManager::GetStoresInfo", mConnection, [&] {
        const DeviceImage image(PathOfConnection(mConnection), files::LockMode::SHARED, ImageFamily::Kld);
        for (const CStoreInfo& store : StoreInfosOf(image, PlacesByStore(image)))
            mStores.push_back(new CStoreInfo(store));
    });
    return mStores;
}

}  // namespace VemoKesConfigTools
