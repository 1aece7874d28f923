#pragma once

namespace VemoKesConfigTools {

class IConfigContext;
class IConfigReader;

/// Watches a read. Called on the thread that reads, inside `Read`. Slot order is contract.
class IConfigReaderObserver {
public:
    /// A read begins; nothing of the input has been looked at.
    virtual void OnReadStarted(IConfigReader& reader, IConfigContext& context) = 0;
    /// The context names a complete place: subsystem, device and store. Comes many times for one place. The
    /// observer sets the element observer for that place on the reader.
    virtual void OnSubsystemFound(IConfigReader& reader, IConfigContext& context) = 0;
    /// A subsystem is finished. Readers of formats without an end mark never call it.
    virtual void OnSubsystemCompleted(IConfigReader& reader, IConfigContext& context) = 0;
    /// The read has ended, with errors or without. A reader that is an `IStoreManager` has its final list of
    /// stores.
    virtual void OnReadEnded(IConfigReader& reader, IConfigContext& context) = 0;
    virtual ~IConfigReaderObserver() = default;

protected:
    IConfigReaderObserver() = default;
    IConfigReaderObserver(const IConfigReaderObserver&) = default;
    IConfigReaderObserver& operator=(const IConfigReaderObserver&) = default;
};

}  // namespace VemoKesConfigTools
