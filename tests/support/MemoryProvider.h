#pragma once

// A metadata provider whose records are defined in code.

#include "messages/CTheMsgHnd.h"
#include "model/CBaseContext.h"
#include "model/CMetadataDetail.h"
#include "model/CNullMetadata.h"
#include "model/CStructField.h"
#include "model/IChipInfo.h"
#include "model/IMetadataProvider.h"
#include "model/ISubsystemInfo.h"

#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace KesTest {

using namespace VemoKesConfigTools;

constexpr std::int32_t ANY_SUBSYSTEM = -1;

/// A record with plain members, filled by chained calls.
struct Record final : IMetadata {
    Record(std::uint32_t number, std::string itsName, std::string itsType)
        : psid(number), name(std::move(itsName)), type(std::move(itsType)) {}

    Record& Range(std::int64_t lo, std::int64_t hi) {
        min = lo;
        max = hi;
        return *this;
    }
    Record& Format(std::string text) {
        format = std::move(text);
        return *this;
    }
    Record& Label(std::string text) {
        label = std::move(text);
        return *this;
    }
    Record& Array(std::int64_t lo, std::int64_t hi) {
        isArray = true;
        arrayMin = lo;
        arrayMax = hi;
        return *this;
    }
    Record& Indexes(std::uint32_t count) {
        indexes = count;
        return *this;
    }
    Record& In(std::int32_t itsSubsystem) {
        subsystem = itsSubsystem;
        return *this;
    }
    Record& Enum(IMetadataDetail::EnumMap enums) {
        kind = METADATA_TYPE_ENUM;
        detail = std::make_unique<CMetadataDetailEnum>(std::move(enums));
        return *this;
    }
    /// Fields with their widths in bits.
    Record& Struct(const std::vector<std::pair<const Record*, std::int32_t>>& records) {
        kind = METADATA_TYPE_STRUCT;
        IMetadataDetail::FieldList list;
        std::int32_t position = 0;
        for (const auto& [record, width] : records) {
            fields.emplace_back(record, position, width);
            list.push_back(&fields.back());
            position += width;
        }
        detail = std::make_unique<CMetadataDetailStruct>(std::move(list));
        return *this;
    }

    std::int32_t Uid() const override { return static_cast<std::int32_t>(psid); }
    std::uint32_t Psid() const override { return psid; }
    std::string Name() const override { return name; }
    std::string Label() const override { return label; }
    bool IsInternal() const override { return false; }
    std::string Format() const override { return format; }
    std::int64_t Min() const override { return min; }
    std::int64_t Max() const override { return max; }
    std::string Oid() const override { return {}; }
    std::string TypeName() const override { return type; }
    std::string Units() const override { return {}; }
    bool IsArray() const override { return isArray; }
    std::int64_t ArrayMinLength() const override { return arrayMin; }
    std::int64_t ArrayMaxLength() const override { return arrayMax; }
    std::string Description() const override { return {}; }
    std::string DescriptionInternal() const override { return {}; }
    std::string SourceReference() const override { return {}; }
    std::string AccessRightName() const override { return "read_write"; }
    MetadataTypeEnum MetadataType() const override { return kind; }
    const IMetadataDetail* Detail() const override { return detail.get(); }
    bool IsValid() const override { return true; }
    std::uint32_t NumIndexes() const override { return indexes; }
    const CTableIndex* TableIndexAt(std::uint16_t /*position*/) const override { return nullptr; }

    std::uint32_t psid;
    std::string name;
    std::string type;
    std::string format;
    std::string label;
    std::int64_t min = std::numeric_limits<std::int64_t>::min();
    std::int64_t max = std::numeric_limits<std::int64_t>::max();
    bool isArray = false;
    std::int64_t arrayMin = 0;
    std::int64_t arrayMax = 0;
    std::uint32_t indexes = 0;
    std::int32_t subsystem = ANY_SUBSYSTEM;
    MetadataTypeEnum kind = METADATA_TYPE_SIMPLE;
    std::unique_ptr<IMetadataDetail> detail;
    std::deque<CStructField> fields;
};

struct Subsystem final : ISubsystemInfo {
    Subsystem(std::string itsName, std::string itsAlias)
        : name(std::move(itsName)), alias(std::move(itsAlias)) {}
    std::string Name() const override { return name; }
    std::string Version() const override { return {}; }
    std::string Alias() const override { return alias; }
    std::string Layer() const override { return {}; }
    std::string Description() const override { return {}; }
    std::string BuildDate() const override { return {}; }
    std::string Variant() const override { return {}; }
    std::string name;
    std::string alias;
};

struct Chip final : IChipInfo {
    Chip(std::string itsLabel, std::string itsId) : label(std::move(itsLabel)), id(std::move(itsId)) {}
    std::string Name() const override { return "chip"; }
    std::string ChipId() const override { return id; }
    std::string RomName() const override { return {}; }
    std::string RomVersion() const override { return {}; }
    std::string SystemVersionLabel() const override { return label; }
    std::string SystemDescription() const override { return {}; }
    std::string SystemVersion() const override { return {}; }
    std::string BuildDate() const override { return {}; }
    std::string label;
    std::string id;
};

class MemoryProvider final : public IMetadataProvider {
public:
    /// A key, of all subsystems unless `In` restricts it. Complete it before the first query.
    Record& Key(std::uint32_t psid, const std::string& name, const std::string& type) {
        Record& record = mRecords.emplace_back(psid, name, type);
        mByName[name].push_back(&record);
        mByPsid[psid].push_back(&record);
        mList.emplace(record.Uid(), &record);
        return record;
    }
    /// A record for struct fields, which is not found as a key.
    Record& Field(const std::string& name, const std::string& type) {
        return mRecords.emplace_back(0, name, type);
    }
    void AddSubsystem(const std::string& name, const std::string& alias = {}) {
        mSubsystemInfos.push_back(&mSubsystems.emplace_back(name, alias));
    }
    void AddChip(const std::string& label, const std::string& id) {
        mChipInfos.push_back(&mChips.emplace_back(label, id));
    }

    const std::map<std::int32_t, const IMetadata*>& MetadataList(IConfigContext& /*context*/,
                                                                 bool load) override {
        if (load) ++loads;
        return mList;
    }
    const IMetadata& MetadataByUid(std::uint32_t uid, IConfigContext& context, bool details) override {
        return MetadataByPsid(uid, context, details);
    }
    const IMetadata& MetadataByPsid(std::uint32_t psid, IConfigContext& context, bool /*details*/) override {
        return Find(mByPsid, psid, context);
    }
    const IMetadata& MetadataByName(const std::string& name, IConfigContext& context,
                                    bool /*details*/) override {
        return Find(mByName, name, context);
    }
    const std::vector<const ISubsystemInfo*>& SubsystemInfos(IConfigContext& /*context*/) override {
        return mSubsystemInfos;
    }
    const std::vector<const IChipInfo*>& ChipInfos(IConfigContext& /*context*/) override {
        return mChipInfos;
    }
    void Refresh() override {}

    std::string errorForUnknown;  ///< stored when a key is not found, unless empty
    std::uint32_t loads = 0;      ///< how often the list was requested before a read

private:
    template <typename Map, typename Key>
    const IMetadata& Find(const Map& map, const Key& key, IConfigContext& context) const {
        const auto found = map.find(key);
        if (found == map.end()) {
            if (!errorForUnknown.empty()) {
                CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "MemoryProvider", false)
                    .SetErrorMsg(0, errorForUnknown);
            }
            return CNullMetadata::Ref();
        }
        const std::int32_t subsystem = static_cast<CBaseContext&>(context).SubsystemType();
        for (const Record* record : found->second) {
            if (record->subsystem == ANY_SUBSYSTEM || record->subsystem == subsystem) return *record;
        }
        return CNullMetadata::Ref();
    }

    std::deque<Record> mRecords;
    std::deque<Subsystem> mSubsystems;
    std::deque<Chip> mChips;
    std::unordered_map<std::string, std::vector<const Record*>> mByName;
    std::unordered_map<std::uint32_t, std::vector<const Record*>> mByPsid;
    std::map<std::int32_t, const IMetadata*> mList;
    std::vector<const ISubsystemInfo*> mSubsystemInfos;
    std::vector<const IChipInfo*> mChipInfos;
};

}  // namespace KesTest
