#pragma once

#include "plugins/image/ImageInfo.h"
#include "tool/output/Json.h"

namespace kes::tool {

/// What `kes device info` tells of an image: a document whose results are the stores.
Json InfoDocument(const std::string& device, const VemoKesConfigTools::ImageInfo& info);
/// Prints the document as lines and tables on standard output.
void PrintInfo(const Json& document);

}  // namespace kes::tool
