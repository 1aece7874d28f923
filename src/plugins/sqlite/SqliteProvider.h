#pragma once

#include "metadb/MetadataDatabase.h"
#include "model/IConfigReader.h"
#include "model/IMetadataProvider.h"
#include "plugins/sqlite/LoadedSubsystem.h"
#include "plugins/sqlite/SqliteRecords.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The metadata of one database file, which is opened read-only. The records of a subsystem are loaded on
/// first use and kept, also across `Refresh`, until the provider is destroyed.
///
/// If the file is missing, is not a metadata database or is damaged, an error of number 0 that names the file
/// and the cause is stored when it is opened and again on each query; results are then empty or not valid.
///
/// As a reader it supplies the default values of the context's subsystem, using the reader "KesText".
class CSqliteProvider final : public IMetadataProvider, public IConfigReader {
public:
    explicit CSqliteProvider(const std::string& path);
    CSqliteProvider(const CSqliteProvider&) = delete;
    CSqliteProvider& operator=(const CSqliteProvider&) = delete;
    ~CSqliteProvider() override;

    const std::map<std::int32_t, const IMetadata*>& MetadataList(IConfigContext& context, bool load) override;
    const IMetadata& MetadataByUid(std::uint32_t uid, IConfigContext& context, bool details) override;
    const IMetadata& MetadataByPsid(std::uint32_t psid, IConfigContext& context, bool details) override;
    const IMetadata& MetadataByName(const std::string& name, IConfigContext& context, bool details) override;
    const std::vector<const ISubsystemInfo*>& SubsystemInfos(IConfigContext& context) override;
    const std::vector<const IChipInfo*>& ChipInfos(IConfigContext& context) override;
    void Refresh() override;

    void SetObserver(IConfigReaderObserver* observer) override { mpObserver = observer; }
    /// Not used: the reader "KesText" does the work.
    void SetElementObserver(IConfigReaderElementObserver* /*observer*/) override {}
    void SetMetadataProvider(IMetadataProvider* /*provider*/) override {}
    bool Read(IConfigContext& context) override;

private:
    struct System;
    struct Content;

    Content& Open();
    System* FindSystem(IConfigContext& context);
    const CLoadedSubsystem& Find(IConfigContext& context);
    const CLoadedSubsystem& Load(System& system, std::int32_t type);

    std::string mPath;
    std::unique_ptr<Content> mpContent;              ///< null until the next query
    std::vector<std::unique_ptr<Content>> mRetired;  ///< from before a `Refresh`; records are still in use
    // The system of the last query: most queries are for the same one again.
    std::string mLastChip;
    System* mpLastSystem = nullptr;

    IConfigReaderObserver* mpObserver = nullptr;
};

}  // namespace VemoKesConfigTools
