#pragma once

#include <cstdint>

namespace VEMO::Kes::ConfigurationTools {

/// The kinds of subsystems of a chip.
enum SubsystemTypes : std::int32_t {
    SUBSYSTEM_TYPE_NONE = -1,
    SUBSYSTEM_TYPE_CURATOR = 0,
    SUBSYSTEM_TYPE_BT = 1,
    SUBSYSTEM_TYPE_WLAN = 2,
    SUBSYSTEM_TYPE_AUDIO = 3,
    SUBSYSTEM_TYPE_GNSS = 4,
    SUBSYSTEM_TYPE_NFC = 5,
    SUBSYSTEM_TYPE_JANITOR = 6,
    SUBSYSTEM_TYPE_APP = 7,
    SUBSYSTEM_TYPE_BLE = 8,
    SUBSYSTEM_TYPE_PSAPPS = 9,
    SUBSYSTEM_TYPE_PSAUDIO = 10,
    SUBSYSTEM_TYPE_MAX = 11
};

/// The kinds of non-volatile memory and store sets. Two members share the value 15.
enum DeviceNvsTypes : std::int32_t {
    DEVICE_TYPE_NONE = -1,
    DEVICE_TYPE_ROM = 0,
    DEVICE_TYPE_OTP = 1,
    DEVICE_TYPE_SMEM = 2,
    DEVICE_TYPE_MTP = 4,
    DEVICE_TYPE_ALL = 7,
    DEVICE_TYPE_EEPROM = 15,
    DEVICE_TYPE_PS_AUDIO = 11,
    DEVICE_TYPE_PS_APPS = 12,
    DEVICE_TYPE_CUR_CFG = 13,
    DEVICE_TYPE_FW_CFG = 14,
    DEVICE_TYPE_DEV_CFG = 15
};

/// What kind of key a record describes.
enum class MetadataTypes : std::int32_t { Simple = 0, Enum = 1, Struct = 2, Unknown = 3 };

/// The type of a simple key. The numbering differs from that of payload types.
enum class SimpleElementTypes : std::int32_t {
    None = 0,
    Int8 = 1,
    Int16 = 2,
    Int32 = 3,
    Int64 = 4,
    UInt8 = 5,
    UInt16 = 6,
    UInt32 = 7,
    UInt64 = 8,
    String = 9
};

enum class AccessRights : std::int32_t {
    Unknown = 0,
    NotAccessible = 1,
    ReadOnly = 2,
    ReadWrite = 3,
    WriteOnly = 4
};

/// Layer numbers.
class LayerIndexVals {
public:
    static constexpr std::int32_t Invalid = 65535;
    static constexpr std::int32_t Defaults = 0;
    static constexpr std::int32_t Minimum = 1;
    static constexpr std::int32_t Maximum = 15;
    static constexpr std::int32_t AllCombined = 16;

    LayerIndexVals() = default;
};

}  // namespace VEMO::Kes::ConfigurationTools
