#pragma once

#include "plugins/image/ImageFormat.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The layout of an image that is to be created.
struct ImageLayout {
    ImageHeader header;
    ImageDirectory directory;
};

/// Determines the layout of an image: its memories, and the stores that its family has initially. Throws
/// `Refusal` for invalid sizes.
ImageLayout LayOut(const ImageGeometry& geometry);

/// All bytes of the image. `contents` are those of the first stores; an empty string stands for no content.
/// Throws `Refusal` if one does not fit.
std::string RenderImage(ImageLayout layout, const std::vector<std::string>& contents);

}  // namespace VemoKesConfigTools
