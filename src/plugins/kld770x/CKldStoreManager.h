#pragma once

#include "model/CStoreInfo.h"
#include "model/IStoreManager.h"

#include <list>
#include <string>
#include <utility>

namespace VemoKesConfigTools {

/// Creates and lists the stores of a device. Each operation reads the device again.
class CKldStoreManager final : public IStoreManager {
public:
    explicit CKldStoreManager(std::string connection) : mConnection(std::move(connection)) {}
    CKldStoreManager(const CKldStoreManager&) = delete;
    CKldStoreManager& operator=(const CKldStoreManager&) = delete;
    ~CKldStoreManager() override { ClearStoreList(mStores); }

    void CreateStore(CStoreInfo& store, IConfigContext& context) override;
    /// Updates `store` from the store on the device with the same device number and store number.
    void RefreshStoreInfo(CStoreInfo& store, IConfigContext& context) override;
    const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& context) override;

private:
    std::string mConnection;
    std::list<CStoreInfo*> mStores;
};

}  // namespace VemoKesConfigTools
