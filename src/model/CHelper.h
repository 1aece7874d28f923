#pragma once

#include "messages/Export.h"

namespace VemoKesConfigTools {

class IConfigContext;
class IMetadataProvider;

/// Questions that need both a provider and a context. One instance for the process, without state.
class KES_API CHelper {
public:
    static CHelper& Ref();

    /// The chip id of the system that the context's chip names; -1 when the provider does not know it.
    int GetAssociatedChipId(IMetadataProvider* provider, IConfigContext& context) const;

private:
    CHelper() = default;
};

}  // namespace VemoKesConfigTools
