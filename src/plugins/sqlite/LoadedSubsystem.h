#pragma once

#include "metadb/MetadataModel.h"
#include "plugins/sqlite/RecordIndex.h"
#include "plugins/sqlite/SqliteRecords.h"
#include "plugins/sqlite/TextPool.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

/// The records of one subsystem, with hash lookup by number and by name. The records do not move during the
/// lifetime of this object.
class CLoadedSubsystem {
public:
    explicit CLoadedSubsystem(const metadb::SubsystemData& data);
    CLoadedSubsystem(const CLoadedSubsystem&) = delete;
    CLoadedSubsystem& operator=(const CLoadedSubsystem&) = delete;

    /// All records by uid, including those of struct fields, whose psid is 0.
    const std::map<std::int32_t, const IMetadata*>& List() const { return mByUid; }
    /// A record, or the null record. Lookups by number and name find only keys, not struct fields.
    const IMetadata& ByUid(std::uint32_t uid) const;
    const IMetadata& ByPsid(std::uint32_t psid) const;
    const IMetadata& ByName(std::string_view name) const;

    /// The default values, one line of the text format each: key number, indexes, value.
    const std::string& DefaultLines() const { return mDefaultLines; }

private:
    struct Type {
        MetadataTypeEnum kind = METADATA_TYPE_SIMPLE;
        const IMetadataDetail* detail = nullptr;
    };

    Type TypeOf(const std::string& name) const;
    void AddEnums(const std::vector<metadb::EnumType>& enums);
    void AddStructs(const std::vector<metadb::StructType>& structs);
    std::uint32_t Add(const metadb::RecordData& data, std::uint32_t psid,
                      const std::vector<metadb::IndexData>& indexes);
    std::uint32_t FindPsid(std::uint32_t psid) const;
    std::uint32_t FindName(std::string_view name) const;
    template <typename IsIt, typename Find>
    const IMetadata& Look(IsIt isIt, Find find) const;

    std::map<std::string, Type> mTypes;
    std::vector<std::unique_ptr<IMetadataDetail>> mDetails;
    CMetadataDetailSimple mSimple;
    std::deque<CStructField> mFields;
    CTextPool mTexts;
    std::vector<CSqliteMetadata> mRecords;  ///< never grows beyond its reserved size: records are referenced
    std::map<std::int32_t, const IMetadata*> mByUid;
    CRecordIndex mByPsid;
    CRecordIndex mByName;
    bool mHasTwins = false;                ///< some keys share a number; lookups return the first of them
    mutable std::uint32_t mLastFound = 0;  ///< the result of the last lookup
    std::string mDefaultLines;
};

}  // namespace VemoKesConfigTools
