#pragma once

#include "plugins/image/ImageFormat.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// Where everything lies in an image that is to be made.
struct ImageLayout {
    ImageHeader header;
    ImageDirectory directory;
};

/// Lays an image out: memories, and the stores that a family has from the start. Throws `Refusal` for sizes
/// that cannot be.
ImageLayout LayOut(const ImageGeometry& geometry);

/// All bytes of the image. `contents` are those of the first stores; an empty one is none. Throws `Refusal`
/// when one does not fit.
std::string RenderImage(ImageLayout layout, const std::vector<std::string>& contents);

}  // namespace VemoKesConfigTools
