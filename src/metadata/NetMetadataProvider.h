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

/// Read-only access for a host to a metadata database: chips, their subsystems and keys. Every query builds
/// new records, which belong to the host. Use it from one thread at a time.
///
/// `system` and `chip` are texts as returned by `Chip::SystemVersionLabel`. A null result of a key query
/// means that the key does not exist or that an error is stored, which may be an older one: this class never
/// clears errors. Without the plug-in "sqlite" every query returns null and stores an error of number 1.
class KES_API NetMetadataProvider {
public:
    using MetadataMapRef = HostMapRef<std::int32_t, std::shared_ptr<Metadata>>;

    /// Opens the database with this file name.
    explicit NetMetadataProvider(const HostString& dbName);
    NetMetadataProvider(const NetMetadataProvider&) = delete;
    NetMetadataProvider& operator=(const NetMetadataProvider&) = delete;
    ~NetMetadataProvider();

    /// The keys of one subsystem by uid; records without a key number are omitted. `firmwareVersion` is
    /// unused.
    MetadataMapRef GetMetadatas(const HostString& system, const HostString& firmwareVersion,
                                SubsystemTypes subsystemType);
    std::shared_ptr<Metadata> GetMetadataByPsid(const HostString& system, SubsystemTypes subsystemType,
                                                std::int32_t psid);
    std::shared_ptr<Metadata> GetMetadataByName(const HostString& system, SubsystemTypes subsystemType,
                                                const HostString& name);
    /// The details of a key, including all levels of nested structs. They are stored in the record. Uses the
    /// chip of the preceding `GetMetadatas` or `GetSubsystems`, one of which must have been called.
    std::shared_ptr<MetadataDetails> GetMetadataDetails(const std::shared_ptr<Subsystem>& subsystem,
                                                        const std::shared_ptr<Metadata>& metadata);
    HostListRef<std::shared_ptr<Subsystem>> GetSubsystems(const HostString& chip);
    /// All chips of the database. Resets the chip that `GetMetadataDetails` uses.
    HostListRef<std::shared_ptr<Chip>> GetChips();
    /// Makes the next query read the database again.
    void Refresh();
    /// Releases the database. Later calls fail as if the plug-in were missing.
    void Dispose();

private:
    bool IsProviderValid() const;
    bool IsErrorSet(const char* function) const;
    static std::shared_ptr<Metadata> Build(const VemoKesConfigTools::IMetadata& metadata);
    static void AddTableIndexes(Metadata& managedMd, const VemoKesConfigTools::IMetadata& unmanagedMd);
    std::shared_ptr<MetadataDetails> BuildStruct(const std::shared_ptr<Subsystem>& subsystem,
                                                 const VemoKesConfigTools::IMetadata& metadata);

    std::unique_ptr<VemoKesConfigTools::IMetadataProvider> mpProvider;
    /// Of the last `GetMetadatas` or `GetSubsystems`.
    std::unique_ptr<VemoKesConfigTools::CKesContext> mpContext;
};

}  // namespace VEMO::Kes::ConfigurationTools
