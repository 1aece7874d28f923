#pragma once

#include "host/HostString.h"
#include "metadata/Enumerations.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VEMO::Kes::ConfigurationTools {

/// One key of a configuration with its value, for the host: a copy.
class KeyValue {
public:
    using IndexList = std::vector<std::int32_t>;

    KeyValue(SubsystemTypes subsystem, std::int32_t device, std::int32_t store, std::int32_t psid,
             HostString name, IndexList indexes, std::string value, std::optional<std::string> defaultValue)
        : mSubsystem(subsystem),
          mDevice(device),
          mStore(store),
          mPsid(psid),
          mName(std::move(name)),
          mIndexes(std::move(indexes)),
          mValue(std::move(value)),
          mDefault(std::move(defaultValue)) {}

    SubsystemTypes SubsystemType() const { return mSubsystem; }
    /// A value of `DeviceNvsTypes`.
    std::int32_t DeviceId() const { return mDevice; }
    std::int32_t StoreId() const { return mStore; }
    /// The key number.
    std::int32_t Psid() const { return mPsid; }
    /// Null for a key that is not in the metadata.
    const HostString& Name() const { return mName; }
    const IndexList& Indexes() const { return mIndexes; }
    /// The value on one line, in a form that can be read again; empty for a key without a value.
    HostString Value() const { return mValue; }
    /// The value as the bytes of a text. Where they are not valid UTF-8, `Value` has U+FFFD.
    const std::string& ValueBytes() const { return mValue; }
    /// The default value in the same form; null if the key has none or no defaults have been loaded.
    HostString Default() const { return mDefault ? HostString(*mDefault) : HostString(); }
    const std::optional<std::string>& DefaultBytes() const { return mDefault; }
    /// Whether value and default are identical bytes.
    bool IsDefault() const { return mDefault == mValue; }

private:
    SubsystemTypes mSubsystem;
    std::int32_t mDevice;
    std::int32_t mStore;
    std::int32_t mPsid;
    HostString mName;
    IndexList mIndexes;
    std::string mValue;
    std::optional<std::string> mDefault;
};

}  // namespace VEMO::Kes::ConfigurationTools
