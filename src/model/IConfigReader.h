#pragma once

namespace VemoKesConfigTools {

class IConfigContext;
class IConfigReaderElementObserver;
class IConfigReaderObserver;
class IMetadataProvider;

/// Reads a configuration from somewhere and pushes what it finds to its observers. `Read` may be called
/// repeatedly, and observers may be changed between two calls. Slot order is contract.
class IConfigReader {
public:
    /// Sets the observer of the whole read, not owned. Required before `Read`.
    virtual void SetObserver(IConfigReaderObserver* observer) = 0;
    /// Sets the receiver of the elements, not owned, which must be a `CSubsystemConfig`. The model calls it
    /// while a read runs, from `OnReadStarted` or `OnSubsystemFound`.
    virtual void SetElementObserver(IConfigReaderElementObserver* observer) = 0;
    /// Sets the provider that the reader asks about keys, not owned. Required before `Read`.
    virtual void SetMetadataProvider(IMetadataProvider* provider) = 0;
    /// Reads all input. The implementer calls `OnReadStarted`; then for each place sets it in the context,
    /// calls `OnSubsystemFound`, asks the provider's `MetadataList` with true, and hands each key to the
    /// element observer; at last `OnReadEnded`. Failures go to the message service. True when there were
    /// none.
    virtual bool Read(IConfigContext& context) = 0;
    virtual ~IConfigReader() = default;

protected:
    IConfigReader() = default;
    IConfigReader(const IConfigReader&) = default;
    IConfigReader& operator=(const IConfigReader&) = default;
};

}  // namespace VemoKesConfigTools
