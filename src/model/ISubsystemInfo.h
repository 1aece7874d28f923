#pragma once

#include <string>

namespace VemoKesConfigTools {

/// One subsystem of a chip, owned by its provider. Slot order is contract.
class ISubsystemInfo {
public:
    /// The canonical name: "curator", "bt", "wlan", ...
    virtual std::string Name() const = 0;
    virtual std::string Version() const = 0;
    /// Another name that texts may use; may be empty.
    virtual std::string Alias() const = 0;
    virtual std::string Layer() const = 0;
    virtual std::string Description() const = 0;
    virtual std::string BuildDate() const = 0;
    virtual std::string Variant() const = 0;

protected:
    ISubsystemInfo() = default;
    ISubsystemInfo(const ISubsystemInfo&) = default;
    ISubsystemInfo& operator=(const ISubsystemInfo&) = default;
    ~ISubsystemInfo() = default;
};

}  // namespace VemoKesConfigTools
