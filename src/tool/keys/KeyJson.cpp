#include "tool/keys/KeyJson.h"

#include "tool/keys/KeyText.h"

#include <algorithm>
#include <utility>

namespace kes::tool {

namespace {

namespace metadb = VemoKesConfigTools::metadb;

std::string AccessText(api::AccessRights access) {
    switch (access) {
        case api::AccessRights::NotAccessible:
            return "not accessible";
        case api::AccessRights::ReadOnly:
            return "read only";
        case api::AccessRights::ReadWrite:
            return "read and write";
        case api::AccessRights::WriteOnly:
            return "write only";
        case api::AccessRights::Unknown:
            break;
    }
    return "unknown";
}

void AddText(Json& record, const char* field, const api::HostString& text) {
    if (std::string narrow = Text(text); !narrow.empty()) record[field] = std::move(narrow);
}

template <typename Values>
Json Choices(const Values& values) {
    Json choices = Json::array();
    for (const auto& [name, value] : values) choices.push_back({{"name", Text(name)}, {"value", value}});
    return choices;
}

void AddIndexes(Json& record, const api::Metadata& key) {
    for (const auto& index : key.TableIndexes()) {
        Json entry{{"name", Text(index->Name())}, {"minimum", index->Min()}, {"maximum", index->Max()}};
        if (index->EnumCount() != 0) entry["choices"] = Choices(index->Enums());
        record["indexes"].push_back(std::move(entry));
    }
}

void AddValues(Json& record, const api::Metadata& key, std::pair<std::int64_t, std::int64_t> range);

Json FieldRecord(const api::StructField& field) {
    const api::Metadata& key = *field.MetaData();
    Json record{{"name", Text(key.Name())}, {"label", Text(key.Label())}};
    if (IsBitField(field)) {
        record["type"] = "bit field";
    } else {
        AddType(record, key);
    }
    record["bits"] = field.ElemBitWidth();
    record["bit_position"] = field.ElemLsbBitPos();
    AddText(record, "description", key.Description());
    AddValues(record, key, FieldRange(field));
    return record;
}

/// Range or length, units, format, choices and fields: what keys and fields have in common.
void AddValues(Json& record, const api::Metadata& key, std::pair<std::int64_t, std::int64_t> range) {
    const bool simple = key.MetadataType() == api::MetadataTypes::Simple;
    const bool isString = key.SimpleType() == api::SimpleElementTypes::String;
    if (simple && isString) record["length"] = {{"minimum", key.Min()}, {"maximum", key.Max()}};
    if (simple && !isString) {
        record["minimum"] = range.first;
        record["maximum"] = range.second;
    }
    AddText(record, "units", key.Units());
    if (simple && !isString) AddText(record, "format", key.Format());
    const std::shared_ptr<api::MetadataDetails>& details = key.Details();
    if (!details) return;
    if (const auto enums = details->Enums()) record["choices"] = Choices(*enums);
    for (const auto& field : details->StructFields()) record["fields"].push_back(FieldRecord(*field));
}

void AddDefaults(Json& record, const metadb::SubsystemData& stored, const std::string& name) {
    const auto key = std::ranges::find(stored.keys, name, &metadb::KeyData::name);
    if (key == stored.keys.end()) return;
    for (const metadb::DefaultValue& value : key->defaults) {
        if (value.indexes.empty()) {
            record["default"] = value.value;
        } else {
            record["defaults"][value.indexes] = value.value;
        }
    }
}

Json RecordHead(const api::Subsystem& subsystem, const api::Metadata& key) {
    Json record{{"subsystem", Text(subsystem.Name())},
                {"number", static_cast<std::uint32_t>(key.Psid())},
                {"name", Text(key.Name())},
                {"label", Text(key.Label())}};
    AddType(record, key);
    return record;
}

}  // namespace

Json KeyRecord(const api::Subsystem& subsystem, const api::Metadata& key) {
    Json record = RecordHead(subsystem, key);
    AddIndexes(record, key);
    return record;
}

Json FullKeyRecord(const api::Subsystem& subsystem, const api::Metadata& key,
                   const metadb::SubsystemData& stored) {
    Json record = RecordHead(subsystem, key);
    AddText(record, "alias", subsystem.Alias());
    AddValues(record, key, {key.Min(), key.Max()});
    AddIndexes(record, key);
    AddDefaults(record, stored, Text(key.Name()));
    record["access"] = AccessText(key.AccessRight());
    if (key.IsInternal()) record["internal"] = true;
    AddText(record, "description", key.Description());
    AddText(record, "internal_note", key.DescriptionInternal());
    AddText(record, "oid", key.Oid());
    AddText(record, "source", key.SourceReference());
    record["uid"] = key.Uid();
    record["example"] = ExampleLine(key);
    return record;
}

void AddType(Json& record, const api::Metadata& key) {
    record["type"] = TypeWord(key);
    if (key.Details()) AddText(record, "type_name", key.Details()->EnumStructTypeName());
    if (key.IsArray())
        record["array"] = {{"minimum", key.ArrayMinLength()}, {"maximum", key.ArrayMaxLength()}};
}

}  // namespace kes::tool
