#pragma once

#include <cstdint>
#include <list>

namespace VemoKesConfigTools {

class CStoreInfo;
class IConfigContext;

/// The store side of a device, or of any reader that meets stores. Slot order is contract.
class IStoreManager {
public:
    /// Kinds of non-volatile memory, and store sets of a device.
    enum DEVICE : std::int32_t {
        DEVICE_NONE = -1,
        DEVICE_ROM = 0,
        DEVICE_OTP = 1,
        DEVICE_SMEM = 2,
        DEVICE_MTP = 4,
        DEVICE_ALL = 7,
        DEVICE_PS_AUDIO = 11,
        DEVICE_PS_APPS = 12,
        DEVICE_CUR_CFG = 13,
        DEVICE_FW_CFG = 14,
        DEVICE_EEPROM = 15,
        DEVICE_DEV_CFG = 15
    };

    /// Creates a store on the device. A failure is stored as an error message.
    virtual void CreateStore(CStoreInfo& store, IConfigContext& context) = 0;
    /// Asks the device again about a store.
    virtual void RefreshStoreInfo(CStoreInfo& store, IConfigContext& context) = 0;
    /// The stores, owned by the manager. Valid until its next operation.
    virtual const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& context) = 0;
    virtual ~IStoreManager() = default;

protected:
    IStoreManager() = default;
    IStoreManager(const IStoreManager&) = default;
    IStoreManager& operator=(const IStoreManager&) = default;
};

}  // namespace VemoKesConfigTools
