#pragma once

#include "metadata/Enumerations.h"

#include <array>
#include <string>
#include <string_view>

namespace kes::tool {

enum class ConfigKind { TEXT, CHUNKS, EEPROM, ISP, KLD };

/// The prefixes that say of what kind a configuration is, with words for each.
struct ConfigPrefix {
    std::string_view word;
    ConfigKind kind;
    const char* meaning;
};
inline constexpr std::array<ConfigPrefix, 5> CONFIG_PREFIXES = {{
    {"text:", ConfigKind::TEXT, "a text"},
    {"chunks:", ConfigKind::CHUNKS, "a folder of chunk files"},
    {"eeprom:", ConfigKind::EEPROM, "a device of the family eeprom"},
    {"isp:", ConfigKind::ISP, "a device of the family isp"},
    {"kld:", ConfigKind::KLD, "a device of the family kld"},
}};

/// How the help tells what a configuration can be.
inline constexpr const char* CONFIG_HELP =
    "A text (\"-\" for standard input), a folder of chunk files, or a device: eeprom:, isp: or kld: and its "
    "image";

/// A configuration as it is named on the command line. A prefix says what it is. Without one an existing
/// folder, and a name that ends in "/", is a folder of chunk files, and anything else a text.
struct ConfigSource {
    /// Throws `Failure` for a prefix without anything behind it.
    explicit ConfigSource(const std::string& given);

    std::string word;  ///< as it was given
    ConfigKind kind = ConfigKind::TEXT;
    std::string target;  ///< the file ("-" for standard input or output), the folder, or the connection
    /// What is read of a device of the family isp.
    VEMO::Kes::ConfigurationTools::DeviceNvsTypes storeSet = VEMO::Kes::ConfigurationTools::DEVICE_TYPE_ALL;

    bool IsText() const { return kind == ConfigKind::TEXT; }
    bool IsDevice() const { return !IsText() && kind != ConfigKind::CHUNKS; }
    bool IsStandardInput() const { return IsText() && target == "-"; }

private:
    void CheckPath() const;
};

}  // namespace kes::tool
