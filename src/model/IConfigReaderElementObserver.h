#pragma once

namespace VemoKesConfigTools {

class CElement;
class IConfigContext;

/// Receives the keys of one place during a read. Slot order is contract.
class IConfigReaderElementObserver {
public:
    /// Takes over the element. False when it was not taken into the configuration; it is deleted then.
    virtual bool OnElementFound(CElement* element, IConfigContext& context) = 0;
    virtual ~IConfigReaderElementObserver() = default;

protected:
    IConfigReaderElementObserver() = default;
    IConfigReaderElementObserver(const IConfigReaderElementObserver&) = default;
    IConfigReaderElementObserver& operator=(const IConfigReaderElementObserver&) = default;
};

}  // namespace VemoKesConfigTools
