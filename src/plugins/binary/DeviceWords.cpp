#include "plugins/binary/DeviceWords.h"

#include "model/IStoreManager.h"
#include "model/SubsystemNames.h"

namespace VemoKesConfigTools {

std::string SubsystemWord(std::int32_t type) {
    const auto number = static_cast<std::size_t>(type);
    if (type >= 0 && number < SUBSYSTEM_NAMES.size()) return std::string(SUBSYSTEM_NAMES[number]);
    return "subsystem" + std::to_string(type);
}

std::string DeviceWord(std::int32_t device) {
    switch (device) {
        case IStoreManager::DEVICE_ROM:
            return std::string(STR_DEVICE_ROM);
        case IStoreManager::DEVICE_OTP:
            return std::string(STR_DEVICE_OTP);
        case IStoreManager::DEVICE_SMEM:
            return std::string(STR_DEVICE_SMEM);
        case IStoreManager::DEVICE_MTP:
            return std::string(STR_DEVICE_MTP);
        case IStoreManager::DEVICE_CUR_CFG:
            return std::string(STR_STORESET_CUR_CFG_FS);
        case IStoreManager::DEVICE_FW_CFG:
            return std::string(STR_STORESET_FW_CFG_FS);
        case IStoreManager::DEVICE_EEPROM:
            return std::string(STR_DEVICE_EEPROM);
        default:
            return "device" + std::to_string(device);
    }
}

}  // namespace VemoKesConfigTools
