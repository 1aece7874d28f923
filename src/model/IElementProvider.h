#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

class CElement;
class IConfigContext;

/// Looks up single keys. Slot order is contract.
class IElementProvider {
public:
    /// The element of a key string (`PSID.INDEX.INDEX`) in the subsystem type and layer that the context
    /// names. For a key that is not there, an element on which `IsValid` is false. Valid until the
    /// configuration changes.
    virtual const CElement& Element(const std::string& key, IConfigContext& context) const = 0;
    /// The same for a key without indexes.
    virtual const CElement& Element(std::uint32_t psid, IConfigContext& context) const = 0;
    virtual ~IElementProvider() = default;

protected:
    IElementProvider() = default;
    IElementProvider(const IElementProvider&) = default;
    IElementProvider& operator=(const IElementProvider&) = default;
};

}  // namespace VemoKesConfigTools
