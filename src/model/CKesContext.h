#pragma once

#include "model/CBaseContext.h"

namespace VemoKesConfigTools {

/// The concrete context of the library: adds chip, device, store, order, layer and file type. Each reads as a
/// tag too.
class KES_API CKesContext final : public CBaseContext {
public:
    CKesContext() = default;

    std::string Name() const override;
    std::string GetTag(std::string_view tag) const override { return CBaseContext::GetTag(tag); }
    IConfigContext* Clone() const override;

    /// The `SystemVersionLabel` of a chip.
    void SetChip(std::string_view chip) { mChip = chip; }
    const std::string& Chip() const { return mChip; }
    /// A value of `DeviceNvsTypes`.
    void SetDevice(std::int32_t device) { mDevice = device; }
    /// The device, -1 when none is set.
    std::int32_t Device() const { return mDevice.value_or(-1); }
    void SetStore(std::int32_t store) { mStore = store; }
    /// The store number, -1 when none is set.
    std::int32_t Store() const { return mStore.value_or(-1); }
    /// Position of the store in the reader's list of stores, from 1.
    void SetOrder(std::uint16_t order) { mOrder = order; }
    std::int32_t Order() const { return mOrder.value_or(-1); }
    /// A layer of `LayerIndexVals`.
    void SetLayerNumber(std::int32_t layer) { mLayerNumber = layer; }
    /// The layer, empty when none is set.
    std::optional<std::int32_t> LayerNumber() const { return mLayerNumber; }
    void SetFileType(std::int32_t type) { mFileType = type; }

    bool HasDevice() const { return mDevice.has_value(); }
    bool HasStore() const { return mStore.has_value(); }
    /// Whether subsystem, device and store are all set: without building any text.
    bool HasPlace() const { return HasSubsystemType() && mDevice.has_value() && mStore.has_value(); }

protected:
    const NumberField* FindNumber(std::string_view tag) const override;
    const std::string* FindText(std::string_view tag) const override;

private:
    std::string mChip;
    NumberField mDevice;
    NumberField mStore;
    NumberField mOrder;
    NumberField mLayerNumber;
    NumberField mFileType;
};

}  // namespace VemoKesConfigTools
