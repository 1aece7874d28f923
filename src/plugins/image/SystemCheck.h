#pragma once

#include "plugins/image/ImageFormat.h"

#include <cstdint>

namespace VemoKesConfigTools {

class CKesContext;
class IMetadataProvider;

/// The chip id of the system that the context names, 0 when nobody knows it.
std::uint16_t ChipIdOf(IMetadataProvider* provider, CKesContext& context);

/// Refuses an image for another chip than that of the context.
void ExpectChip(const ImageHeader& header, IMetadataProvider* provider, CKesContext& context);

/// Refuses contents of another system than that of the context. Without a label they go with every system.
void ExpectSystem(const ImageDirectory& directory, const CKesContext& context);

}  // namespace VemoKesConfigTools
