#pragma once

#include "cli/Json.h"
#include "plugins/image/ImageInfo.h"

namespace kes::cli {

/// What `kes device info` tells of an image: a document whose results are the stores.
Json InfoDocument(const std::string& device, const VemoKesConfigTools::ImageInfo& info);
/// Prints the document as lines and tables on standard output.
void PrintInfo(const Json& document);

}  // namespace kes::cli
