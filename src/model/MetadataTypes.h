#pragma once

#include <cstdint>

namespace VemoKesConfigTools {

/// What kind of key a metadata record describes.
enum MetadataTypeEnum : std::int32_t {
    METADATA_TYPE_SIMPLE = 0,
    METADATA_TYPE_ENUM = 1,
    METADATA_TYPE_STRUCT = 2,
    METADATA_TYPE_UNKNOWN = 3  ///< no metadata stands behind the record
};

/// Numbers of the subsystem types, the same as `SubsystemTypes` of the host API.
enum SubSystemTypeEnum : std::int32_t {
    SUBSYSTEM_NONE = -1,
    SUBSYSTEM_CURATOR = 0,
    SUBSYSTEM_BT = 1,
    SUBSYSTEM_WLAN = 2,
    SUBSYSTEM_AUDIO = 3,
    SUBSYSTEM_GNSS = 4,
    SUBSYSTEM_NFC = 5,
    SUBSYSTEM_JANITOR = 6,
    SUBSYSTEM_APP = 7,
    SUBSYSTEM_BLE = 8,
    SUBSYSTEM_PSAPPS = 9,
    SUBSYSTEM_PSAUDIO = 10,
    SUBSYSTEM_MAX = 11
};

}  // namespace VemoKesConfigTools
