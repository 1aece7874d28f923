#pragma once

#include "model/IStoreManager.h"
#include "model/Words.h"

#include <array>
#include <string_view>
#include <utility>

namespace VemoKesConfigTools {

/// The devices that have a name in texts, with their names.
inline constexpr std::array<std::pair<std::string_view, IStoreManager::DEVICE>, 7> DEVICE_NAMES = {{
    {STR_DEVICE_ROM, IStoreManager::DEVICE_ROM},
    {STR_DEVICE_OTP, IStoreManager::DEVICE_OTP},
    {STR_DEVICE_SMEM, IStoreManager::DEVICE_SMEM},
    {STR_DEVICE_MTP, IStoreManager::DEVICE_MTP},
    {STR_STORESET_CUR_CFG_FS, IStoreManager::DEVICE_CUR_CFG},
    {STR_STORESET_FW_CFG_FS, IStoreManager::DEVICE_FW_CFG},
    {STR_DEVICE_EEPROM, IStoreManager::DEVICE_EEPROM},
}};

}  // namespace VemoKesConfigTools
