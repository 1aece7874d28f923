#pragma once

#include "metadata/Enumerations.h"

#include <cstdint>

namespace VEMO::Kes::ConfigurationTools {

/// One place of a configuration: a subsystem, device and store that holds keys.
class Place {
public:
    Place(SubsystemTypes subsystem, std::int32_t device, std::int32_t store, std::uint32_t keyCount)
        : mSubsystem(subsystem), mDevice(device), mStore(store), mKeyCount(keyCount) {}

    SubsystemTypes SubsystemType() const { return mSubsystem; }
    /// A value of `DeviceNvsTypes`.
    std::int32_t DeviceId() const { return mDevice; }
    std::int32_t StoreId() const { return mStore; }
    std::uint32_t KeyCount() const { return mKeyCount; }

private:
    SubsystemTypes mSubsystem;
    std::int32_t mDevice;
    std::int32_t mStore;
    std::uint32_t mKeyCount;
};

}  // namespace VEMO::Kes::ConfigurationTools
