#include "plugins/sqlite/LoadedSubsystem.h"

#include "model/CNullMetadata.h"
#include "model/Words.h"

#include <functional>

namespace VemoKesConfigTools {

namespace {

std::size_t RecordsOf(const metadb::SubsystemData& data) {
    std::size_t records = data.keys.size();
    for (const metadb::StructType& type : data.structs) records += type.fields.size();
    return records;
}

std::uint32_t HashOf(std::uint32_t psid) { return psid * 0x9E3779B1U; }

std::uint32_t HashOf(std::string_view name) {
    const std::uint64_t hash = std::hash<std::string_view>()(name);
    return static_cast<std::uint32_t>(hash ^ hash >> 32U) * 0x9E3779B1U;
}

}  // namespace

CLoadedSubsystem::CLoadedSubsystem(const metadb::SubsystemData& data)
    : mByPsid(data.keys.size()), mByName(data.keys.size()) {
    mRecords.reserve(RecordsOf(data));
    AddEnums(data.enums);
    AddStructs(data.structs);
    for (const metadb::KeyData& key : data.keys) {
        const std::string number = std::to_string(key.psid);
        for (const metadb::DefaultValue& value : key.defaults) {
            mDefaultLines.append(number).append(value.indexes.empty() ? "" : ".").append(value.indexes);
            mDefaultLines.append(" = ").append(value.value).append("\n");
        }
        const std::uint32_t record = Add(key, key.psid, key.indexes);
        if (key.psid != 0) {
            if (FindPsid(key.psid) == CRecordIndex::NONE) {
                mByPsid.Add(HashOf(key.psid), record);
            } else {
                mHasTwins = true;
            }
        }
        mByName.Add(HashOf(key.name), record);
    }
}

const IMetadata& CLoadedSubsystem::ByUid(std::uint32_t uid) const {
    const auto found = mByUid.find(static_cast<std::int32_t>(uid));
    return found == mByUid.end() ? CNullMetadata::Ref() : *found->second;
}

const IMetadata& CLoadedSubsystem::ByPsid(std::uint32_t psid) const {
    return Look([&](const CSqliteMetadata& record) { return record.Psid() == psid; },
                [&] { return FindPsid(psid); });
}

const IMetadata& CLoadedSubsystem::ByName(std::string_view name) const {
    return Look([&](const CSqliteMetadata& record) { return record.NameText() == name; },
                [&] { return FindName(name); });
}

/// Tries the last result and the record after it first: texts and configurations are mostly in the order of
/// the database, and these two records are likely to be in the CPU cache, unlike the index.
template <typename IsIt, typename Find>
const IMetadata& CLoadedSubsystem::Look(IsIt isIt, Find find) const {
    for (std::uint32_t i = mLastFound; !mHasTwins && i < mRecords.size() && i <= mLastFound + 1; ++i) {
        // A record without a number may be a struct field, which must not be found; the index has only keys.
        if (mRecords[i].Psid() == 0 || !isIt(mRecords[i])) continue;
        mLastFound = i;
        return mRecords[i];
    }
    const std::uint32_t found = find();
    if (found == CRecordIndex::NONE) return CNullMetadata::Ref();
    mLastFound = found;
    return mRecords[found];
}

std::uint32_t CLoadedSubsystem::FindPsid(std::uint32_t psid) const {
    return mByPsid.Find(HashOf(psid), [&](std::uint32_t i) { return mRecords[i].Psid() == psid; });
}

std::uint32_t CLoadedSubsystem::FindName(std::string_view name) const {
    return mByName.Find(HashOf(name), [&](std::uint32_t i) { return mRecords[i].NameText() == name; });
}

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

void CLoadedSubsystem::AddStructs(const std::vector<metadb::StructType>& structs) {
    // A field may have a struct type that is defined later, so the structs that a struct contains are built
    // first. A struct that contains itself has been rejected when the database was loaded.
    std::map<std::string_view, const metadb::StructType*> waiting;
    for (const metadb::StructType& type : structs) waiting.emplace(type.name, &type);
    const auto build = [&](const auto& self, const metadb::StructType& type) -> void {
        for (const metadb::FieldData& field : type.fields) {
            const auto inner = waiting.find(field.type);
            if (inner == waiting.end()) continue;
            const metadb::StructType& first = *inner->second;
            waiting.erase(inner);
            self(self, first);
        }
        IMetadataDetail::FieldList fields;
        for (const metadb::FieldData& field : type.fields) {
            const CSqliteMetadata& record = mRecords[Add(field, 0, {})];
            fields.push_back(&mFields.emplace_back(&record, field.lsb, field.width));
        }
        mDetails.push_back(std::make_unique<CMetadataDetailStruct>(std::move(fields)));
        mTypes[type.name] = {METADATA_TYPE_STRUCT, mDetails.back().get()};
    };
    while (!waiting.empty()) {
        const metadb::StructType& type = *waiting.begin()->second;
        waiting.erase(waiting.begin());
        build(build, type);
    }
}

/// Adds a record and returns its position in `mRecords`.
std::uint32_t CLoadedSubsystem::Add(const metadb::RecordData& data, std::uint32_t psid,
                                    const std::vector<metadb::IndexData>& indexes) {
    const Type type = TypeOf(data.type);
    const CSqliteMetadata& record =
        mRecords.emplace_back(data, psid, type.kind, type.detail, indexes, mTexts);
    mByUid.emplace_hint(mByUid.end(), record.Uid(), &record);
    return static_cast<std::uint32_t>(mRecords.size() - 1);
}

}  // namespace VemoKesConfigTools
