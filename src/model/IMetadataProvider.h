#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

class IChipInfo;
class IConfigContext;
class IMetadata;
class ISubsystemInfo;

/// Answers what a key is. The context says where to look: chip (a system version label), subsystem type and
/// layer. Results are references to objects that the provider keeps for as long as it lives; an unknown key
/// gives a record whose `IsValid` is false. A failure of the storage is stored as an error message, and the
/// result is empty or not valid. What `CMetadataProviderFactory::Create` gives is an `IConfigReader` of the
/// default values as well. Slot order is contract.
class IMetadataProvider {
public:
    /// All keys of the context's subsystem, by uid. Asked with true before a read, so that the provider can
    /// load them.
    virtual const std::map<std::int32_t, const IMetadata*>& MetadataList(IConfigContext& context,
                                                                         bool load) = 0;
    /// `details` tells that the caller goes on to read details or index counts.
    virtual const IMetadata& MetadataByUid(std::uint32_t uid, IConfigContext& context, bool details) = 0;
    virtual const IMetadata& MetadataByPsid(std::uint32_t psid, IConfigContext& context, bool details) = 0;
    virtual const IMetadata& MetadataByName(const std::string& name, IConfigContext& context,
                                            bool details) = 0;
    /// The subsystems of the context's chip.
    virtual const std::vector<const ISubsystemInfo*>& SubsystemInfos(IConfigContext& context) = 0;
    /// All chips, whatever the context says.
    virtual const std::vector<const IChipInfo*>& ChipInfos(IConfigContext& context) = 0;
    virtual std::int32_t Reserved6() { return 0; }
    virtual std::int32_t Reserved7() { return 0; }
    /// Reads the database anew on the next question. Records that were handed out stay as they are.
    virtual void Refresh() = 0;
    virtual ~IMetadataProvider() = default;

protected:
    IMetadataProvider() = default;
    IMetadataProvider(const IMetadataProvider&) = default;
    IMetadataProvider& operator=(const IMetadataProvider&) = default;
};

}  // namespace VemoKesConfigTools
