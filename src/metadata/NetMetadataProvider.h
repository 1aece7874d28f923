#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "messages/Export.h"
#include "metadata/Chip.h"
#include "metadata/Enumerations.h"
#include "metadata/Metadata.h"
#include "metadata/Subsystem.h"

#include <cstdint>
#include <memory>

namespace VemoKesConfigTools {
class CKesContext;
class IMetadata;
class IMetadataProvider;
}  // namespace VemoKesConfigTools

namespace VEMO::Kes::ConfigurationTools {

/// The read-only view of a host on a metadata database: chips, their subsystems, their keys. Every listing
/// builds new records, which belong to the host. Used from one thread at a time.
///
/// `system` and `chip` are the text that `Chip::SystemVersionLabel` shows. A null result of a key query means
/// that the key is not there, or that an error is stored, whoever stored it: this class never clears any.
/// Without the plug-in "sqlite" every query gives null and an error of number 1.
class KES_API NetMetadataProvider {
public:
    using MetadataMapRef = HostMapRef<std::int32_t, std::shared_ptr<Metadata>>;

    /// Opens the database of this name.
    explicit NetMetadataProvider(const HostString& dbName);
    NetMetadataProvider(const NetMetadataProvider&) = delete;
    NetMetadataProvider& operator=(const NetMetadataProvider&) = delete;
    ~NetMetadataProvider();

    /// The keys of one subsystem by uid; records without a number are left out. `firmwareVersion` is not
    /// used.
    MetadataMapRef GetMetadatas(const HostString& system, const HostString& firmwareVersion,
                                SubsystemTypes subsystemType);
    std::shared_ptr<Metadata> GetMetadataByPsid(const HostString& system, SubsystemTypes subsystemType,
                                                std::int32_t psid);
    std::shared_ptr<Metadata> GetMetadataByName(const HostString& system, SubsystemTypes subsystemType,
                                                const HostString& name);
    /// The details of a key, complete to the bottom of nested structs. They are kept in the record. A
    /// `GetMetadatas` or `GetSubsystems` must have come before, whose chip is used.
    std::shared_ptr<MetadataDetails> GetMetadataDetails(const std::shared_ptr<Subsystem>& subsystem,
                                                        const std::shared_ptr<Metadata>& metadata);
    HostListRef<std::shared_ptr<Subsystem>> GetSubsystems(const HostString& chip);
    /// All chips of the database. The chip of the last listing is forgotten.
    HostListRef<std::shared_ptr<Chip>> GetChips();
    /// Reads the database anew on the next question.
    void Refresh();
    /// Releases the database. Later calls find the provider missing.
    void Dispose();

private:
    bool IsProviderValid() const;
    bool IsErrorSet(const char* function) const;
    static std::shared_ptr<Metadata> Build(const VemoKesConfigTools::IMetadata& metadata);
    static void AddTableIndexes(Metadata& managedMd, const VemoKesConfigTools::IMetadata& unmanagedMd);
    std::shared_ptr<MetadataDetails> BuildStruct(const std::shared_ptr<Subsystem>& subsystem,
                                                 const VemoKesConfigTools::IMetadata& metadata);

    std::unique_ptr<VemoKesConfigTools::IMetadataProvider> mpProvider;
    std::unique_ptr<VemoKesConfigTools::CKesContext> mpContext;  ///< of the last listing
};

}  // namespace VEMO::Kes::ConfigurationTools
