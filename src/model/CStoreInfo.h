#pragma once

#include "messages/Export.h"
#include "model/IStoreManager.h"

#include <cstdint>
#include <list>

namespace VemoKesConfigTools {

/// The description of one store.
class KES_API CStoreInfo {
public:
    CStoreInfo() = default;
    /// The size of a store of which only device and number are known.
    static constexpr std::uint32_t UNKNOWN_SIZE = 0xFFFFFFFF;

    /// Sizes are in bytes: `storeSize` is `UNKNOWN_SIZE`, and `freeSize` is -1, when it is not known.
    CStoreInfo(IStoreManager::DEVICE device, std::uint16_t storeId, std::uint32_t storeSize,
               std::int32_t freeSize, std::uint16_t linkedStoreId, std::uint16_t order, bool paired)
        : mDevice(device),
          mStoreSize(storeSize),
          mFreeSize(freeSize),
          mStoreId(storeId),
          mLinkedStoreId(linkedStoreId),
          mOrder(order),
          mPaired(paired) {}

    /// The memory that holds the store.
    IStoreManager::DEVICE DeviceId() const { return mDevice; }
    void SetDeviceId(IStoreManager::DEVICE device) { mDevice = device; }
    /// Number of the store on its device.
    std::uint16_t StoreId() const { return mStoreId; }
    void SetStoreId(std::uint16_t id) { mStoreId = id; }
    std::uint32_t StoreSize() const { return mStoreSize; }
    void SetStoreSize(std::uint32_t size) { mStoreSize = size; }
    std::int32_t StoreSizeFree() const { return mFreeSize; }
    /// The application id that a store was created for.
    std::uint16_t LinkedStoreId() const { return mLinkedStoreId; }
    void SetLinkedStoreId(std::uint16_t id) { mLinkedStoreId = id; }
    /// Position in the order in which a reader met its stores, from 1.
    std::uint16_t Order() const { return mOrder; }
    /// Whether the store is one of a pair.
    bool Paired() const { return mPaired; }
    void SetPaired(bool paired) { mPaired = paired; }

    /// Takes over what another description of the same store knows and this one does not. Whoever knows the
    /// size of a store has seen the store itself, and knows its pair and its link.
    void FillFrom(const CStoreInfo& known);

private:
    IStoreManager::DEVICE mDevice = IStoreManager::DEVICE_NONE;
    std::uint32_t mStoreSize = 0;
    std::int32_t mFreeSize = -1;
    std::uint16_t mStoreId = 0;
    std::uint16_t mLinkedStoreId = 0;
    std::uint16_t mOrder = 0;
    bool mPaired = false;
};

/// Deletes every entry and leaves the list empty.
KES_API void ClearStoreList(std::list<CStoreInfo*>& stores);

}  // namespace VemoKesConfigTools
