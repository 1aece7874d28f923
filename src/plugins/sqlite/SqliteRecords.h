#pragma once

#include "metadb/MetadataModel.h"
#include "model/CMetadataDetail.h"
#include "model/CStructField.h"
#include "model/CTableIndex.h"
#include "model/IChipInfo.h"
#include "model/IMetadata.h"
#include "model/ISubsystemInfo.h"
#include "plugins/sqlite/TextPool.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// The record of a key or struct field. A pool owns its texts.
class CSqliteMetadata final : public IMetadata {
public:
    /// `detail` belongs to the type and must outlive the record; null for an unknown type.
    CSqliteMetadata(const metadb::RecordData& data, std::uint32_t psid, MetadataTypeEnum type,
                    const IMetadataDetail* detail, const std::vector<metadb::IndexData>& indexes,
                    CTextPool& texts);

    std::int32_t Uid() const override { return mUid; }
    std::uint32_t Psid() const override { return mPsid; }
    std::string Name() const override { return std::string(mName); }
    std::string Label() const override { return std::string(mLabel); }
    bool IsInternal() const override { return mIsInternal; }
    std::string Format() const override { return std::string(mFormat); }
    std::int64_t Min() const override { return mMin; }
    std::int64_t Max() const override { return mMax; }
    std::string Oid() const override { return std::string(mOid); }
    std::string TypeName() const override { return std::string(mTypeName); }
    std::string Units() const override { return std::string(mUnits); }
    bool IsArray() const override { return mIsArray; }
    std::int64_t ArrayMinLength() const override { return mArrayMin; }
    std::int64_t ArrayMaxLength() const override { return mArrayMax; }
    std::string Description() const override { return std::string(mDescription); }
    std::string DescriptionInternal() const override { return std::string(mDescriptionInternal); }
    std::string SourceReference() const override { return std::string(mSource); }
    std::string AccessRightName() const override { return std::string(mAccess); }
    MetadataTypeEnum MetadataType() const override { return mType; }
    const IMetadataDetail* Detail() const override { return mpDetail; }
    bool IsValid() const override { return true; }
    std::uint32_t NumIndexes() const override { return static_cast<std::uint32_t>(mIndexes.size()); }
    const CTableIndex* TableIndexAt(std::uint16_t position) const override {
        return position == 0 || position > mIndexes.size() ? nullptr : &mIndexes[position - 1U];
    }

    /// The name, without copying it.
    std::string_view NameText() const { return mName; }

private:
    // The members that a reader needs for every key come first, so that they share few cache lines.
    std::uint32_t mPsid;
    std::int32_t mUid;
    MetadataTypeEnum mType;
    bool mIsArray;
    bool mIsInternal;
    std::string_view mName;
    std::string_view mTypeName;
    std::int64_t mMin;
    std::int64_t mMax;
    std::string_view mFormat;
    std::int64_t mArrayMin;
    std::int64_t mArrayMax;
    const IMetadataDetail* mpDetail;
    std::vector<CTableIndex> mIndexes;
    std::string_view mLabel;
    std::string_view mDescription;
    std::string_view mDescriptionInternal;
    std::string_view mUnits;
    std::string_view mAccess;
    std::string_view mOid;
    std::string_view mSource;
};

class CSqliteSubsystemInfo final : public ISubsystemInfo {
public:
    explicit CSqliteSubsystemInfo(metadb::SubsystemData data) : mData(std::move(data)) {}

    std::string Name() const override { return mData.name; }
    std::string Version() const override { return mData.version; }
    std::string Alias() const override { return mData.alias; }
    std::string Layer() const override { return mData.layer; }
    std::string Description() const override { return mData.description; }
    std::string BuildDate() const override { return mData.buildDate; }
    std::string Variant() const override { return mData.variant; }

private:
    metadb::SubsystemData mData;
};

class CSqliteChipInfo final : public IChipInfo {
public:
    explicit CSqliteChipInfo(metadb::SystemData data) : mData(std::move(data)) {}

    std::string Name() const override { return mData.chipName; }
    std::string ChipId() const override { return std::to_string(mData.chipId); }
    std::string RomName() const override { return mData.romName; }
    std::string RomVersion() const override { return mData.romVersion; }
    std::string SystemVersionLabel() const override { return mData.label; }
    std::string SystemDescription() const override { return mData.description; }
    std::string SystemVersion() const override { return mData.version; }
    std::string BuildDate() const override { return mData.buildDate; }

    const std::string& Label() const { return mData.label; }

private:
    metadb::SystemData mData;
};

}  // namespace VemoKesConfigTools
