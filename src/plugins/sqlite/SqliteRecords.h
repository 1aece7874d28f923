#pragma once

#include "metadb/MetadataModel.h"
#include "model/CMetadataDetail.h"
#include "model/CStructField.h"
#include "model/CTableIndex.h"
#include "model/IChipInfo.h"
#include "model/IMetadata.h"
#include "model/ISubsystemInfo.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// The record of a key or struct field.
class CSqliteMetadata final : public IMetadata {
public:
    /// `detail` belongs to the type and outlives the record; null for a type that nobody knows.
    CSqliteMetadata(metadb::RecordData data, std::uint32_t psid, MetadataTypeEnum type,
                    const IMetadataDetail* detail, const std::vector<metadb::IndexData>& indexes);

    std::int32_t Uid() const override { return mData.uid; }
    std::uint32_t Psid() const override { return mPsid; }
    std::string Name() const override { return mData.name; }
    std::string Label() const override { return mData.label; }
    bool IsInternal() const override { return mData.isInternal; }
    std::string Format() const override { return mData.format; }
    std::int64_t Min() const override { return mData.min; }
    std::int64_t Max() const override { return mData.max; }
    std::string Oid() const override { return mData.oid; }
    std::string TypeName() const override { return mData.type; }
    std::string Units() const override { return mData.units; }
    bool IsArray() const override { return mData.isArray; }
    std::int64_t ArrayMinLength() const override { return mData.arrayMin; }
    std::int64_t ArrayMaxLength() const override { return mData.arrayMax; }
    std::string Description() const override { return mData.description; }
    std::string DescriptionInternal() const override { return mData.descriptionInternal; }
    std::string SourceReference() const override { return mData.source; }
    std::string AccessRightName() const override { return mData.access; }
    MetadataTypeEnum MetadataType() const override { return mType; }
    const IMetadataDetail* Detail() const override { return mpDetail; }
    bool IsValid() const override { return true; }
    std::uint32_t NumIndexes() const override { return static_cast<std::uint32_t>(mIndexes.size()); }
    const CTableIndex* TableIndexAt(std::uint16_t position) const override {
        return position == 0 || position > mIndexes.size() ? nullptr : &mIndexes[position - 1U];
    }

    /// The name, without a copy of it.
    const std::string& NameText() const { return mData.name; }

private:
    std::uint32_t mPsid;
    MetadataTypeEnum mType;
    const IMetadataDetail* mpDetail;
    std::vector<CTableIndex> mIndexes;
    metadb::RecordData mData;
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
