#include "metadb/JsonSource.h"
#include "model/Words.h"

#include <nlohmann/json.hpp>

namespace VemoKesConfigTools::metadb {

namespace {

using Json = nlohmann::ordered_json;

/// The value on one line. Invalid UTF-8, on which `dump` would throw, is replaced.
std::string Line(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

void AddText(Json& object, const char* name, const std::string& text) {
    if (!text.empty()) object[name] = text;
}

Json Values(const NamedValues& values) {
    Json object = Json::object();
    for (const auto& [name, value] : values) object[name] = value;
    return object;
}

/// Adds the members that keys and fields have in common.
void AddRecord(Json& object, const RecordData& record) {
    object["uid"] = record.uid;
    object["name"] = record.name;
    object["type"] = record.type;
    AddText(object, "label", record.label);
    AddText(object, "description", record.description);
    AddText(object, "description_internal", record.descriptionInternal);
    AddText(object, "format", record.format);
    object["min"] = record.min;
    object["max"] = record.max;
    AddText(object, "units", record.units);
    if (record.access != STR_READ_WRITE) object["access"] = record.access;
    if (record.isInternal) object["internal"] = true;
    if (record.isArray) object["array"] = Json{{"min", record.arrayMin}, {"max", record.arrayMax}};
    AddText(object, "oid", record.oid);
    AddText(object, "source", record.source);
}

Json Field(const FieldData& field) {
    Json object;
    AddRecord(object, field);
    object["lsb"] = field.lsb;
    object["width"] = field.width;
    return object;
}

Json Key(const KeyData& key) {
    Json object;
    object["psid"] = key.psid;
    AddRecord(object, key);
    for (const IndexData& index : key.indexes) {
        Json entry{{"name", index.name}, {"min", index.min}, {"max", index.max}};
        if (index.isEnum) entry["values"] = Values(index.values);
        object["indexes"].push_back(std::move(entry));
    }
    for (const DefaultValue& value : key.defaults) {
        if (value.indexes.empty()) {
            object["default"] = value.value;
        } else {
            object["defaults"][value.indexes] = value.value;
        }
    }
    return object;
}

/// Formats the text with one record per line, so that changing a record changes one line.
class Layout {
public:
    void Open(const std::string& head, char bracket) {
        Item(head + bracket);
        mFirst = true;
        ++mDepth;
    }
    void Close(char bracket) {
        --mDepth;
        if (!mFirst) NewLine();
        mText += bracket;
        mFirst = false;
    }
    void Item(const std::string& line) {
        if (!mFirst) mText += ',';
        if (mDepth != 0) NewLine();
        mText += line;
        mFirst = false;
    }
    void Member(const char* name, const Json& value) { Item(Name(name) + Line(value)); }
    void Text(const char* name, const std::string& text) {
        if (!text.empty()) Member(name, text);
    }
    static std::string Name(const std::string& name) { return Line(name) + ": "; }
    std::string Take() { return std::move(mText) + "\n"; }

private:
    void NewLine() { mText.append("\n").append(mDepth * 4, ' '); }

    std::string mText;
    std::size_t mDepth = 0;
    bool mFirst = true;
};

void AddSubsystem(Layout& layout, const SubsystemData& subsystem) {
    layout.Open("", '{');
    layout.Member("name", subsystem.name);
    layout.Text("alias", subsystem.alias);
    layout.Text("version", subsystem.version);
    layout.Text("layer", subsystem.layer);
    layout.Text("variant", subsystem.variant);
    layout.Text("description", subsystem.description);
    layout.Text("build_date", subsystem.buildDate);
    if (!subsystem.enums.empty()) {
        layout.Open(Layout::Name("enums"), '{');
        for (const EnumType& type : subsystem.enums) layout.Member(type.name.c_str(), Values(type.values));
        layout.Close('}');
    }
    if (!subsystem.structs.empty()) {
        layout.Open(Layout::Name("structs"), '{');
        for (const StructType& type : subsystem.structs) {
            layout.Open(Layout::Name(type.name), '[');
            for (const FieldData& field : type.fields) layout.Item(Line(Field(field)));
            layout.Close(']');
        }
        layout.Close('}');
    }
    layout.Open(Layout::Name("keys"), '[');
    for (const KeyData& key : subsystem.keys) layout.Item(Line(Key(key)));
    layout.Close(']');
    layout.Close('}');
}

void AddSystem(Layout& layout, const SystemData& system) {
    layout.Open("", '{');
    layout.Member("label", system.label);
    layout.Text("description", system.description);
    layout.Text("version", system.version);
    layout.Text("build_date", system.buildDate);
    Json chip{{"name", system.chipName}, {"id", system.chipId}};
    AddText(chip, "rom_name", system.romName);
    AddText(chip, "rom_version", system.romVersion);
    layout.Member("chip", chip);
    layout.Open(Layout::Name("subsystems"), '[');
    for (const SubsystemData& subsystem : system.subsystems) AddSubsystem(layout, subsystem);
    layout.Close(']');
    layout.Close('}');
}

}  // namespace

std::string WriteJsonSource(const std::vector<SystemData>& systems) {
    Layout layout;
    layout.Open("", '{');
    layout.Open(Layout::Name("systems"), '[');
    for (const SystemData& system : systems) AddSystem(layout, system);
    layout.Close(']');
    layout.Close('}');
    return layout.Take();
}

}  // namespace VemoKesConfigTools::metadb
