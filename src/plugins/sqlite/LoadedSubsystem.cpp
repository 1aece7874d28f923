#include "plugins/sqlite/LoadedSubsystem.h"

#include "model/CNullMetadata.h"
#include "model/Words.h"

#include <algorithm>
#include <utility>

namespace VemoKesConfigTools {

namespace {

template <typename Map, typename Key>
const IMetadata& Find(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? CNullMetadata::Ref() : *found->second;
}

}  // namespace

CLoadedSubsystem::CLoadedSubsystem(metadb::SubsystemData data) {
    AddEnums(data.enums);
    AddStructs(data.structs);
    mByPsid.reserve(data.keys.size());
    mByName.reserve(data.keys.size());
    for (metadb::KeyData& key : data.keys) {
        const std::string number = std::to_string(key.psid);
        for (const metadb::DefaultValue& value : key.defaults) {
            mDefaultLines.append(number).append(value.indexes.empty() ? "" : ".").append(value.indexes);
            mDefaultLines.append(" = ").append(value.value).append("\n");
        }
        const std::vector<metadb::IndexData> indexes = std::move(key.indexes);
        const std::uint32_t psid = key.psid;
        const CSqliteMetadata& record = Add(std::move(key), psid, indexes);
        if (psid != 0) mByPsid.emplace(psid, &record);
        mByName.emplace(record.NameText(), &record);
    }
}

const IMetadata& CLoadedSubsystem::ByUid(std::uint32_t uid) const {
    return Find(mByUid, static_cast<std::int32_t>(uid));
}

const IMetadata& CLoadedSubsystem::ByPsid(std::uint32_t psid) const { return Find(mByPsid, psid); }

const IMetadata& CLoadedSubsystem::ByName(std::string_view name) const { return Find(mByName, name); }

CLoadedSubsystem::Type CLoadedSubsystem::TypeOf(const std::string& name) const {
    const auto found = mTypes.find(name);
    return found == mTypes.end() ? Type{METADATA_TYPE_SIMPLE, &mSimple} : found->second;
}

void CLoadedSubsystem::AddEnums(const std::vector<metadb::EnumType>& enums) {
    for (const metadb::EnumType& type : enums) {
        mDetails.push_back(std::make_unique<CMetadataDetailEnum>(
            IMetadataDetail::EnumMap(type.values.begin(), type.values.end())));
        mTypes[type.name] = {METADATA_TYPE_ENUM, mDetails.back().get()};
    }
}

void CLoadedSubsystem::AddStructs(std::vector<metadb::StructType>& structs) {
    // A field may be of a struct that comes later, so each struct waits for those that it holds.
    std::map<std::string_view, metadb::StructType*> waiting;
    for (metadb::StructType& type : structs) waiting.emplace(type.name, &type);
    const auto build = [&](const auto& self, metadb::StructType& type) -> void {
        for (const metadb::FieldData& field : type.fields) {
            const auto inner = waiting.find(field.type);
            if (inner == waiting.end()) continue;
            metadb::StructType& first = *inner->second;
            waiting.erase(inner);
            self(self, first);
        }
        IMetadataDetail::FieldList fields;
        for (metadb::FieldData& field : type.fields) {
            const std::int32_t lsb = field.lsb;
            const std::int32_t width = field.width;
            const CSqliteMetadata& record = Add(std::move(field), 0, {});
            fields.push_back(&mFields.emplace_back(&record, lsb, width));
        }
        mDetails.push_back(std::make_unique<CMetadataDetailStruct>(std::move(fields)));
        mTypes[type.name] = {METADATA_TYPE_STRUCT, mDetails.back().get()};
    };
    while (!waiting.empty()) {
        metadb::StructType& type = *waiting.begin()->second;
        waiting.erase(waiting.begin());
        build(build, type);
    }
}

const CSqliteMetadata& CLoadedSubsystem::Add(metadb::RecordData data, std::uint32_t psid,
                                             const std::vector<metadb::IndexData>& indexes) {
    const Type type = TypeOf(data.type);
    const CSqliteMetadata& record =
        mRecords.emplace_back(std::move(data), psid, type.kind, type.detail, indexes);
    mByUid.emplace(record.Uid(), &record);
    return record;
}

}  // namespace VemoKesConfigTools
