#pragma once

#include <string>

namespace VemoKesConfigTools {

/// One chip with one firmware system, owned by its provider. Slot order is contract.
class IChipInfo {
public:
    virtual std::string Name() const = 0;
    /// Decimal digits.
    virtual std::string ChipId() const = 0;
    virtual std::string RomName() const = 0;
    virtual std::string RomVersion() const = 0;
    virtual std::string Reserved4() const { return {}; }
    /// The text that names the firmware system everywhere: in contexts and in the first line of a text.
    virtual std::string SystemVersionLabel() const = 0;
    virtual std::string SystemDescription() const = 0;
    virtual std::string SystemVersion() const = 0;
    virtual std::string BuildDate() const = 0;

protected:
    IChipInfo() = default;
    IChipInfo(const IChipInfo&) = default;
    IChipInfo& operator=(const IChipInfo&) = default;
    ~IChipInfo() = default;
};

}  // namespace VemoKesConfigTools
