#pragma once

#include "plugins/image/ImageFormat.h"

#include <cstdint>

namespace VemoKesConfigTools {

class CKesContext;
class IMetadataProvider;

/// The chip id of the system in the context; 0 if unknown.
std::uint16_t ChipIdOf(IMetadataProvider* provider, CKesContext& context);

/// Throws `Refusal` if the image is for a different chip than the context.
void ExpectChip(const ImageHeader& header, IMetadataProvider* provider, CKesContext& context);

/// Throws `Refusal` if the content is of a different system than the context. A content without a label fits
/// every system.
void ExpectSystem(const ImageDirectory& directory, const CKesContext& context);

}  // namespace VemoKesConfigTools
