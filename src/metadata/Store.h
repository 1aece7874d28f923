#pragma once

#include <cstdint>

namespace VEMO::Kes::ConfigurationTools {

/// One store on a device.
class Store {
public:
    /// The free size of a store that nobody knows.
    static constexpr std::int32_t INVALID_STORE_SIZE = -1;

    Store() = default;
    Store(std::uint16_t deviceId, std::uint16_t storeId, std::uint32_t storeSize, std::int32_t storeFreeSize,
          bool paired)
        : mDeviceId(deviceId),
          mStoreId(storeId),
          mStoreSize(storeSize),
          mStoreFreeSize(storeFreeSize),
          mPaired(paired) {}

    /// A value of `DeviceNvsTypes`.
    std::uint16_t DeviceId() const { return mDeviceId; }
    std::uint16_t StoreId() const { return mStoreId; }
    /// In bytes; all bits are set when nobody knows it.
    std::uint32_t StoreSize() const { return mStoreSize; }
    /// In bytes, or `INVALID_STORE_SIZE`.
    std::int32_t StoreFreeSize() const { return mStoreFreeSize; }
    bool Paired() const { return mPaired; }

private:
    std::uint16_t mDeviceId = 0;
    std::uint16_t mStoreId = 0;
    std::uint32_t mStoreSize = 0;
    std::int32_t mStoreFreeSize = INVALID_STORE_SIZE;
    bool mPaired = false;
};

}  // namespace VEMO::Kes::ConfigurationTools
