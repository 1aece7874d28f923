#pragma once

#include <string_view>

namespace VemoKesConfigTools {

// The words that the modules share: each is written once, here. The values are part of the plug-in contract
// and of the text format, trailing blanks included.

// Type names of metadata and of the text format.
inline constexpr std::string_view STR_UINT8 = "uint8";
inline constexpr std::string_view STR_UINT16 = "uint16";
inline constexpr std::string_view STR_UINT32 = "uint32";
inline constexpr std::string_view STR_UINT64 = "uint64";
inline constexpr std::string_view STR_INT8 = "int8";
inline constexpr std::string_view STR_INT16 = "int16";
inline constexpr std::string_view STR_INT32 = "int32";
inline constexpr std::string_view STR_INT64 = "int64";
inline constexpr std::string_view STR_UINT = "uint";
inline constexpr std::string_view STR_INT = "int";
inline constexpr std::string_view STR_INTEGER = "integer";
inline constexpr std::string_view STR_STRING = "string";
inline constexpr std::string_view STR_OCTET_STRING = "octet_string";
inline constexpr std::string_view STR_UNICODE_STRING = "unicode_string";

// Value format names.
inline constexpr std::string_view STR_SIGNED_DECIMAL_STRING = "signed_decimal";
inline constexpr std::string_view STR_UNSIGNED_DECIMAL_STRING = "unsigned_decimal";
inline constexpr std::string_view STR_HEXADECIMAL_STRING = "hexadecimal";
inline constexpr std::string_view STR_MACADDR_STRING = "mac_addr";

// Truth values.
inline constexpr std::string_view STR_TRUE = "true";
inline constexpr std::string_view STR_FALSE = "false";

// Access right names.
inline constexpr std::string_view STR_NOT_ACCESSIBLE = "not_accessible";
inline constexpr std::string_view STR_READ_ONLY = "read_only";
inline constexpr std::string_view STR_READ_WRITE = "read_write";
inline constexpr std::string_view STR_WRITE_ONLY = "write_only";

// Header information names of a writer.
inline constexpr std::string_view STR_HEADER_NUMINDICES = "num_indices";
inline constexpr std::string_view STR_HEADER_INDEX = "index";

// Tag names.
inline constexpr std::string_view STR_FILE_MODE = "mode";
inline constexpr std::string_view STR_SUBSYSTEM_TYPE = "subsystemtype";
inline constexpr std::string_view STR_DEVICE = "device";
inline constexpr std::string_view STR_STORE = "store";
inline constexpr std::string_view STR_ORDER = "order";
inline constexpr std::string_view STR_LAYER_NUMBER = "layernumber";
inline constexpr std::string_view STR_FILE_TYPE = "filetype";
inline constexpr std::string_view STR_CHIP = "chip";
inline constexpr std::string_view STR_SUBSYS_FW_VERSION = "subsysfwversion";
inline constexpr std::string_view STR_IGNORE_HEADER = "ignoreheader";
inline constexpr std::string_view STR_SUBSYSTEM_KEY_BY_STORE = "subsystemkeybystore";
inline constexpr std::string_view STR_SUBSYSTEM_KEY_BY_LAYER = "subsystemkeybylayer";
inline constexpr std::string_view STR_INSERT_MODE = "insertmode";
inline constexpr std::string_view STR_UPDATE_EEPROM = "updateeprom";
inline constexpr std::string_view STR_CHUNK2FILE = "chunk2file";
inline constexpr std::string_view STR_FILE2CHUNK = "file2chunk";
inline constexpr std::string_view STR_IGNORE_EPROM = "ignoreeprom";
inline constexpr std::string_view STR_CHUNKFILE_FORMAT = "chunkfileformat";
inline constexpr std::string_view STR_FIELD_BITS_WIDTH = "elembitwidth";
inline constexpr std::string_view STR_SPREAD_PACKINT = "spreadpackint";
inline constexpr std::string_view STR_NO_DATA_CHECK = "nodatacheck";
inline constexpr std::string_view STR_LAYER_FILTER = "layerfilter";
inline constexpr std::string_view STR_STORESET_FILTER = "storesetfilter";
inline constexpr std::string_view STR_COEX_CONFIG = "coexconfig";
inline constexpr std::string_view STR_FILE_LENGTHS = "fileLengths";
inline constexpr std::string_view STR_EEPROM_SIZE_EXP = "eepromsizeexp";
inline constexpr std::string_view STR_EEPROM_I2C_MASK = "eepromi2cmask";
inline constexpr std::string_view STR_EFUSE_HASH = "efusehash";
inline constexpr std::string_view STR_LIST_FILES = "listfiles";
inline constexpr std::string_view STR_RAW_MODE = "rawmode";
inline constexpr std::string_view STR_TXT_SIMPLE_MODE = "txtsimplemode";
inline constexpr std::string_view STR_INPUT_FILE = "inputfile";
inline constexpr std::string_view STR_RESET_DEVICE_AFTER = "resetdeviceafteruse";
inline constexpr std::string_view STR_FILTER_NAME = "nameeq";
inline constexpr std::string_view STR_MULTIPLE_EFUSES = "multiple_efuses";
inline constexpr std::string_view STR_PTTRANSPORT_STREAM = "ptstream";

// Tag values.
inline constexpr std::string_view STR_APPEND = "append";
inline constexpr std::string_view STR_NEW = "new";
inline constexpr std::string_view STR_OVERWRITE = "overwrite";
inline constexpr std::string_view STR_EMPTY = "";
inline constexpr std::string_view STR_FILE_MODE_DIR = "dir";
inline constexpr std::string_view STR_CHUNKFILE_PSC = "psc";
inline constexpr std::string_view STR_CHUNKFILE_TXT = "txt";

// Subsystem names.
inline constexpr std::string_view STR_SUBSYSTEM_CURATOR = "curator";
inline constexpr std::string_view STR_SUBSYSTEM_BT = "bt";
inline constexpr std::string_view STR_SUBSYSTEM_WLAN = "wlan";
inline constexpr std::string_view STR_SUBSYSTEM_AUDIO = "audio";
inline constexpr std::string_view STR_SUBSYSTEM_GNSS = "gnss";
inline constexpr std::string_view STR_SUBSYSTEM_NFC = "nfc";
inline constexpr std::string_view STR_SUBSYSTEM_JANITOR = "janitor";
inline constexpr std::string_view STR_SUBSYSTEM_APP = "app";
inline constexpr std::string_view STR_SUBSYSTEM_BLE = "ble";
inline constexpr std::string_view STR_SUBSYSTEM_PSAPPS = "psapps";
inline constexpr std::string_view STR_SUBSYSTEM_PSAUDIO = "psaudio";

// Device names.
inline constexpr std::string_view STR_DEVICE_NONE = "none";
inline constexpr std::string_view STR_DEVICE_ROM = "rom";
inline constexpr std::string_view STR_DEVICE_OTP = "otp";
inline constexpr std::string_view STR_DEVICE_SMEM = "smem";
inline constexpr std::string_view STR_DEVICE_CRAM = "cram";
inline constexpr std::string_view STR_DEVICE_MTP = "mtp";
inline constexpr std::string_view STR_DEVICE_CACHE = "cache";
inline constexpr std::string_view STR_DEVICE_EEPROM = "eeprom";

// Store set names.
inline constexpr std::string_view STR_STORESET_DEV_CFG_FS = "dev_cfg";
inline constexpr std::string_view STR_STORESET_FW_CFG_FS = "fw_cfg";
inline constexpr std::string_view STR_STORESET_CUR_CFG_FS = "cur_cfg";
inline constexpr std::string_view STR_STORESET_USER_PS_APPS = "user_ps_apps";
inline constexpr std::string_view STR_STORESET_USER_PS_AUDIO = "user_ps_audio";

// Error texts.
inline constexpr std::string_view STR_STREAM_WRITE_ERR = "unable to write to the file";
inline constexpr std::string_view STR_FILE_WRITE_ERR = "unable to write to the file";
inline constexpr std::string_view STR_FILE_OPEN_ERR = "unable to open the file";
inline constexpr std::string_view STR_FILE_READ_ERR = "error reading the file";
inline constexpr std::string_view STR_ELEMENT_TYPE_UNK = "key type unknown";
inline constexpr std::string_view STR_METADATA_CUSTOM_TYPE_UND = "custom type undefined";
inline constexpr std::string_view STR_METADATA_DETAIL_NOTFOUND = "no information details for the key";
inline constexpr std::string_view STR_METADATA_NOTFOUND = "unknown psid(s) [contents not validated]: ";
inline constexpr std::string_view STR_UNEXPECTED_ERR = "an unexpected error occurred";
inline constexpr std::string_view STR_INVALID_CONTEXT = "the passed context is invalid";
inline constexpr std::string_view STR_EXPECTED_ERROR_NO_SET =
    "a global error is expected to be set but it is not";
inline constexpr std::string_view STR_READER_CREATE_ERR = "unable to create the reader";
inline constexpr std::string_view STR_WRITER_CREATE_ERR = "unable to create the writer";
inline constexpr std::string_view STR_STOREMANAGER_CREATE_ERR = "unable to create the store manager";
inline constexpr std::string_view STR_OPERATION_INVALID = "invalid operation";
inline constexpr std::string_view STR_SYS_LABEL_VER_INVALID =
    "invalid system name (it doesn't exist in the information repository)";
inline constexpr std::string_view STR_PACKINT_ERROR =
    "error converting data from or to a binary [the input seems corrupt]";
inline constexpr std::string_view STR_PACKINT_BT_LENGTH_INVALID =
    "error converting data from binary for bluetooth subsystem - invalid odd data length of ";
inline constexpr std::string_view STR_DIR_READ_ERR = "unable to read dir content";
inline constexpr std::string_view STR_SYSTEM_LABEL_NOT_FOUND = "system label not found";

/// The file name pattern of plug-ins in a plug-in folder.
inline constexpr std::string_view PLUGIN_WILDCARD = "*.kpm";

}  // namespace VemoKesConfigTools
