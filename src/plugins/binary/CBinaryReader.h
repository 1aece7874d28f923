#pragma once

#include "model/CStoreInfo.h"
#include "model/IConfigReader.h"
#include "model/IStoreManager.h"
#include "plugins/binary/Places.h"

#include <list>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// What the readers of binary files and images share: they decode and check all of their input first and
/// then hand it to the observers, so that an input is taken whole or not at all.
class CBinaryReader : public IConfigReader, public IStoreManager {
public:
    CBinaryReader(const CBinaryReader&) = delete;
    CBinaryReader& operator=(const CBinaryReader&) = delete;
    ~CBinaryReader() override { ClearStoreList(mStores); }

    void SetObserver(IConfigReaderObserver* observer) override { mpObserver = observer; }
    void SetElementObserver(IConfigReaderElementObserver* observer) override { mpElementObserver = observer; }
    void SetMetadataProvider(IMetadataProvider* provider) override { mpProvider = provider; }
    /// Takes the input whole, or stores an error and takes nothing of it. The context must be a
    /// `CKesContext`.
    bool Read(IConfigContext& context) override;

    void CreateStore(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    void RefreshStoreInfo(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    /// The stores of the last read. Valid until the next one.
    const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& /*context*/) override { return mStores; }

protected:
    CBinaryReader() = default;

    /// Gives all places of the input and adds its stores with `AddStore`. `subject` is what messages name,
    /// to be set before anything is refused. Throws `Refusal`.
    virtual std::vector<EncodedPlace> Collect(CKesContext& context, std::string& subject) = 0;

    void AddStore(const CStoreInfo& store) { mStores.push_back(new CStoreInfo(store)); }
    IMetadataProvider* Provider() const { return mpProvider; }

private:
    void Deliver(std::vector<DecodedPlace>& places, CKesContext& context);

    IConfigReaderObserver* mpObserver = nullptr;
    IConfigReaderElementObserver* mpElementObserver = nullptr;
    IMetadataProvider* mpProvider = nullptr;
    std::list<CStoreInfo*> mStores;
};

}  // namespace VemoKesConfigTools
