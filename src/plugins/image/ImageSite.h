#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// What is at the path of an image. Blank is a file of which all bytes are 0xFF, or all 0x00.
enum class SiteState { Missing, Blank, Image, Other };

struct ImageSite {
    SiteState state = SiteState::Missing;
    std::uint64_t size = 0;  ///< in bytes
};

/// Looks at a path. What begins as an image counts as one. Throws `Refusal` for what cannot be read.
ImageSite LookAtSite(const std::string& path);

/// Puts a whole new image there. A file of its size is written in place, so that it may be the node of a
/// chip, and is no image until all of it is there; otherwise the file appears whole. Throws `Refusal`.
void PutImage(const std::string& path, const ImageSite& site, const std::string& bytes);

}  // namespace VemoKesConfigTools
