#pragma once

#include "metadata/RecordTrace.h"

#include <cstdint>

namespace VEMO::Kes::ConfigurationTools {

/// One store on a device.
class Store {
public:
    /// Stands for an unknown free size.
    static constexpr std::int32_t INVALID_STORE_SIZE = -1;

    Store() : Store(0, 0, 0, INVALID_STORE_SIZE, false) {}
    Store(std::uint16_t deviceId, std::uint16_t storeId, std::uint32_t storeSize, std::int32_t storeFreeSize,
          bool paired)
        : mDeviceId(deviceId),
          mStoreId(storeId),
          mStoreSize(storeSize),
          mStoreFreeSize(storeFreeSize),
          mPaired(paired) {
        TraceRecord("VEMO::Kes::ConfigurationTools::Store::Store");
    }

    /// A value of `DeviceNvsTypes`.
    std::uint16_t DeviceId() const { return mDeviceId; }
    std::uint16_t StoreId() const { return mStoreId; }
    /// In bytes; all bits set if unknown.
    std::uint32_t StoreSize() const { return mStoreSize; }
    /// In bytes; `INVALID_STORE_SIZE` if unknown.
    std::int32_t StoreFreeSize() const { return mStoreFreeSize; }
    bool Paired() const { return mPaired; }

private:
    std::uint16_t mDeviceId;
    std::uint16_t mStoreId;
    std::uint32_t mStoreSize;
    std::int32_t mStoreFreeSize;
    bool mPaired;
};

}  // namespace VEMO::Kes::ConfigurationTools
