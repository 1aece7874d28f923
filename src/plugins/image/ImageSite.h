#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// What exists at the path of an image. A blank file has only bytes 0xFF, or only bytes 0x00.
enum class SiteState { Missing, Blank, Image, Other };

struct ImageSite {
    SiteState state = SiteState::Missing;
    std::uint64_t size = 0;      ///< in bytes
    bool isBlockDevice = false;  ///< which has a fixed size
};

/// Examines a path. A file that starts with the magic number counts as an image. Throws `FileError` if it
/// cannot be read or is neither a file nor a block device.
ImageSite LookAtSite(const std::string& path);

/// Writes a complete new image. A file is replaced atomically. A block device, or a file in a folder in which
/// no files can be created, such as the kernel's node for a chip, is written in place and is not a valid
/// image until it is complete. Throws `FileError`.
void PutImage(const std::string& path, const ImageSite& site, const std::string& bytes);

}  // namespace VemoKesConfigTools
