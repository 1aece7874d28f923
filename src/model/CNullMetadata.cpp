#include "model/CNullMetadata.h"

namespace VemoKesConfigTools {

const CNullMetadata CNullMetadata::mInstance;

}  // namespace VemoKesConfigTools
