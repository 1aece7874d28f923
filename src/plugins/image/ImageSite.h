#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// What is at the path of an image. Blank is a file of which all bytes are 0xFF, or all 0x00.
enum class SiteState { Missing, Blank, Image, Other };

struct ImageSite {
    SiteState state = SiteState::Missing;
    std::uint64_t size = 0;      ///< in bytes
    bool isBlockDevice = false;  ///< and so has a size that stays
};

/// Looks at a path. What begins as an image counts as one. Throws `FileError` for what cannot be read, and
/// for what is neither a file nor a block device.
ImageSite LookAtSite(const std::string& path);

/// Puts a whole new image there. A file is replaced as a whole. A device, and a file whose folder takes no
/// other one, as the node that the kernel gives for a chip, is written in place, and is no image until all of
/// it is there. Throws `FileError`.
void PutImage(const std::string& path, const ImageSite& site, const std::string& bytes);

}  // namespace VemoKesConfigTools
