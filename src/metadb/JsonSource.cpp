#include "metadb/JsonSource.h"

#include "metadb/JsonTree.h"
#include "metadb/SourceNodes.h"
#include "model/SubsystemNames.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <limits>
#include <map>
#include <set>

namespace VemoKesConfigTools::metadb {

namespace {

using Kind = JsonNode::Kind;
using Int32 = std::numeric_limits<std::int32_t>;
using Int64 = std::numeric_limits<std::int64_t>;

constexpr std::string_view RIGHTS[] = {STR_NOT_ACCESSIBLE, STR_READ_ONLY, STR_READ_WRITE, STR_WRITE_ONLY};
constexpr std::string_view INTEGER_FORMATS[] = {"", STR_SIGNED_DECIMAL_STRING, STR_UNSIGNED_DECIMAL_STRING,
                                                STR_HEXADECIMAL_STRING};
constexpr std::string_view OCTET_FORMATS[] = {"", STR_UNICODE_STRING, STR_MACADDR_STRING};
constexpr std::int64_t LONGEST_OCTET_STRING = 65535;

struct IntegerType {
    std::string_view name;
    std::int64_t min;
    std::int64_t max;
    std::int32_t width;  ///< in bits; 0 if the record must give it
};
constexpr IntegerType INTEGER_TYPES[] = {
    {STR_UINT8, 0, 0xFF, 8},
    {STR_UINT16, 0, 0xFFFF, 16},
    {STR_UINT32, 0, 0xFFFFFFFF, 32},
    {STR_UINT64, 0, Int64::max(), 64},
    {STR_INT8, -0x80, 0x7F, 8},
    {STR_INT16, -0x8000, 0x7FFF, 16},
    {STR_INT32, Int32::min(), Int32::max(), 32},
    {STR_INT64, Int64::min(), Int64::max(), 64},
    {STR_INTEGER, Int64::min(), Int64::max(), 0},
};

std::string ListOf(const auto& words) {
    std::string list;
    for (const std::string_view word : words) {
        list += (list.empty() ? "\"" : ", \"") + std::string(word) + "\"";
    }
    return list;
}

/// Whether the text reader takes a default value as one line: it has no line end, no comment outside quotes
/// and no trailing backslash, which would continue the line. Otherwise the default could not be loaded later.
bool IsOneLogicalLine(std::string_view text) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n' || c == '\r') return false;
        if (quoted && c == '\\') {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && (c == '#' || text.substr(i, 2) == "/*")) {
            return false;
        }
    }
    return !text.ends_with('\\');
}

/// Reads one subsystem.
class SubsystemSource {
public:
    SubsystemSource(SourceNodes& nodes, const JsonNode& object) : mNodes(nodes), mObject(object) {}

    SubsystemData Read() {
        mNodes.AllowOnly(mObject, {"name", "alias", "version", "layer", "variant", "description",
                                   "build_date", "enums", "structs", "keys"});
        mData.name = mNodes.RequiredText(mObject, "name");
        mData.alias = mNodes.Text(mObject, "alias");
        mData.version = mNodes.Text(mObject, "version");
        mData.layer = mNodes.Text(mObject, "layer");
        mData.variant = mNodes.Text(mObject, "variant");
        mData.description = mNodes.Text(mObject, "description");
        mData.buildDate = mNodes.Text(mObject, "build_date");
        if (!mData.name.empty() &&
            std::ranges::find(SUBSYSTEM_NAMES, mData.name) == std::end(SUBSYSTEM_NAMES)) {
            mNodes.Fault(mObject.Find("name")->offset, "unknown subsystem \"" + mData.name +
                                                           "\", must be one of " + ListOf(SUBSYSTEM_NAMES));
        }
        if (!std::ranges::all_of(mData.alias, [](char c) { return IsName({&c, 1}); })) {
            mNodes.Fault(mObject.Find("alias")->offset, "an alias must consist of letters and \"_\"");
        }
        ReadTypeNames();
        if (const JsonNode* enums = mNodes.Optional(mObject, "enums", Kind::Object)) {
            for (const JsonNode::Member& member : enums->members) ReadEnum(member);
        }
        if (const JsonNode* structs = mNodes.Optional(mObject, "structs", Kind::Object)) {
            for (const JsonNode::Member& member : structs->members) ReadStruct(member);
        }
        mNodes.EachObject(mNodes.Required(mObject, "keys", Kind::Array), "a key", [&](const JsonNode& key) {
            mData.keys.push_back(ReadKey(key));
            mKeyNodes.push_back(&key);
        });
        CountUids();
        CheckTypes();
        return std::move(mData);
    }

private:
    /// The names are read first, so that types may be used before they are defined.
    void ReadTypeNames() {
        for (const char* kind : {"enums", "structs"}) {
            const JsonNode* types = mObject.Find(kind);
            if (types == nullptr) continue;
            for (const JsonNode::Member& member : types->members) {
                if (!IsName(member.name)) {
                    mNodes.Fault(member.offset, "invalid type name \"" + member.name + "\"");
                } else if (FindIntegerType(member.name) != nullptr || member.name == STR_OCTET_STRING ||
                           !mTypes.emplace(member.name, &member).second) {
                    mNodes.Fault(member.offset, "type \"" + member.name + "\" already exists");
                }
            }
        }
    }

    void ReadEnum(const JsonNode::Member& member) {
        if (!mNodes.Expect(member.value, Kind::Object, "an enumeration")) return;
        EnumType type{member.name, mNodes.Values(member.value, Int32::min())};
        if (member.value.members.empty())
            mNodes.Fault(member.value.offset, "an enumeration must have a value");
        // The text reader ignores the case of enumerators.
        std::set<std::string> folded;
        for (const JsonNode::Member& enumerator : member.value.members) {
            std::string name = enumerator.name;
            std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
            if (!IsName(enumerator.name, /*dash=*/true)) {
                mNodes.Fault(enumerator.offset, "invalid enumerator name \"" + enumerator.name + "\"");
            } else if (!folded.insert(std::move(name)).second) {
                mNodes.Fault(enumerator.offset,
                             "\"" + enumerator.name + "\" differs from another enumerator only in case");
            }
        }
        mData.enums.push_back(std::move(type));
    }

    void ReadStruct(const JsonNode::Member& member) {
        if (!mNodes.Expect(member.value, Kind::Array, "a struct")) return;
        if (member.value.items.empty()) mNodes.Fault(member.value.offset, "a struct must have a field");
        StructType type{member.name, {}};
        // A field without "lsb" follows the previous one. The array length is capped, so that the position
        // cannot overflow.
        std::int64_t next = 0;
        mNodes.EachObject(&member.value, "a field", [&](const JsonNode& node) {
            FieldData field;
            ReadRecord(node, field, {"lsb", "width"});
            const IntegerType* integer = FindIntegerType(field.type);
            const std::int32_t natural = integer != nullptr ? integer->width : 0;
            if (integer != nullptr && natural == 0 && node.Find("width") == nullptr) {
                mNodes.Fault(node.offset, "a field of type \"integer\" must have a \"width\"");
            }
            field.width = static_cast<std::int32_t>(mNodes.Number(node, "width", 0, Int32::max(), natural));
            field.lsb = static_cast<std::int32_t>(
                mNodes.Number(node, "lsb", 0, Int32::max(), std::min<std::int64_t>(next, Int32::max())));
            next = std::int64_t{field.lsb} +
                   field.width * std::max<std::int64_t>(1, std::min<std::int64_t>(field.arrayMax, 65535));
            mRecords.emplace_back(&node, field.uid);
            type.fields.push_back(std::move(field));
        });
        mData.structs.push_back(std::move(type));
    }

    KeyData ReadKey(const JsonNode& node) {
        KeyData key;
        ReadRecord(node, key, {"psid", "indexes", "default", "defaults"});
        key.psid = static_cast<std::uint32_t>(
            mNodes.RequiredNumber(node, "psid", 0, std::numeric_limits<std::uint32_t>::max()));
        mRecords.emplace_back(&node, key.uid);
        if (key.psid != 0 && !mPsids.insert(key.psid).second) {
            mNodes.Fault(node.Find("psid")->offset, "another key has the number " + std::to_string(key.psid));
        }
        if (!key.name.empty() && !mKeyNames.insert(key.name).second) {
            mNodes.Fault(node.Find("name")->offset, "another key has the name \"" + key.name + "\"");
        }
        mNodes.EachObject(mNodes.Optional(node, "indexes", Kind::Array), "an index",
                          [&](const JsonNode& index) { key.indexes.push_back(ReadIndex(index)); });
        ReadDefaults(node, key);
        return key;
    }

    void ReadRecord(const JsonNode& node, RecordData& record, std::initializer_list<std::string_view> more) {
        std::vector<std::string_view> names = {
            "uid",    "name", "type",  "label", "description", "description_internal",
            "format", "min",  "max",   "units", "access",      "internal",
            "array",  "oid",  "source"};
        names.insert(names.end(), more.begin(), more.end());
        mNodes.AllowOnly(node, names);
        record.uid = static_cast<std::int32_t>(mNodes.Number(node, "uid", 1, Int32::max(), 0));
        record.name = mNodes.RequiredText(node, "name");
        if (!record.name.empty() && !IsName(record.name)) {
            mNodes.Fault(node.Find("name")->offset,
                         "invalid name \"" + record.name +
                             "\", must be letters, digits and \"_\", not starting with a digit");
        }
        record.type = mNodes.RequiredText(node, "type");
        record.label = mNodes.Text(node, "label");
        record.description = mNodes.Text(node, "description");
        record.descriptionInternal = mNodes.Text(node, "description_internal");
        record.units = mNodes.Text(node, "units");
        record.oid = mNodes.Text(node, "oid");
        record.source = mNodes.Text(node, "source");
        record.isInternal = mNodes.Flag(node, "internal");
        record.access =
            node.Find("access") == nullptr ? std::string(STR_READ_WRITE) : OneOf(node, "access", RIGHTS);
        ReadTypeOf(node, record);
        if (const JsonNode* array = mNodes.Optional(node, "array", Kind::Object)) {
            mNodes.AllowOnly(*array, {"min", "max"});
            record.isArray = true;
            record.arrayMin = mNodes.RequiredNumber(*array, "min", 0, Int64::max());
            record.arrayMax = mNodes.RequiredNumber(*array, "max", 0, Int64::max());
            CheckOrder(*array, record.arrayMin, record.arrayMax);
        }
    }

    /// Type, format and range, which depend on each other.
    void ReadTypeOf(const JsonNode& node, RecordData& record) {
        std::int64_t min = 0;
        std::int64_t max = 0;
        if (const IntegerType* type = FindIntegerType(record.type)) {
            record.format = OneOf(node, "format", INTEGER_FORMATS);
            min = type->min;
            max = type->max;
        } else if (record.type == STR_OCTET_STRING) {
            record.format = OneOf(node, "format", OCTET_FORMATS);
            max = LONGEST_OCTET_STRING;
        } else {
            record.format = mNodes.Text(node, "format");
            if (!record.format.empty()) {
                mNodes.Fault(node.Find("format")->offset, "an enum or struct must not have a format");
            }
            if (!record.type.empty() && !mTypes.contains(record.type)) FaultUnknownType(node, record.type);
        }
        record.min = mNodes.Number(node, "min", Int64::min(), Int64::max(), min);
        record.max = mNodes.Number(node, "max", Int64::min(), Int64::max(), max);
        CheckOrder(node, record.min, record.max);
        const bool isInteger = FindIntegerType(record.type) != nullptr;
        for (const char* bound : {"min", "max"}) {
            const JsonNode* given = node.Find(bound);
            if (given == nullptr || given->kind != Kind::Integer || !isInteger) continue;
            if (given->integer < min || given->integer > max) {
                mNodes.Fault(given->offset,
                             std::string("\"") + bound + "\" is outside the range of type " + record.type);
            }
        }
    }

    void FaultUnknownType(const JsonNode& node, const std::string& type) {
        std::vector<std::string_view> known;
        for (const IntegerType& integer : INTEGER_TYPES) known.push_back(integer.name);
        known.push_back(STR_OCTET_STRING);
        mNodes.Fault(node.Find("type")->offset, "unknown type \"" + type + "\", must be one of " +
                                                    ListOf(known) + " or an enum or struct of the subsystem");
    }

    void CheckOrder(const JsonNode& node, std::int64_t min, std::int64_t max) {
        if (min > max) {
            mNodes.Fault(node.offset, "\"min\" " + std::to_string(min) + " is greater than \"max\" " +
                                          std::to_string(max));
        }
    }

    std::string OneOf(const JsonNode& node, std::string_view name, const auto& words) {
        std::string text = mNodes.Text(node, name);
        if (const JsonNode* given = node.Find(name); given != nullptr && given->kind == Kind::String &&
                                                     std::ranges::find(words, text) == std::end(words)) {
            mNodes.Fault(given->offset, "\"" + std::string(name) + "\" must be one of " + ListOf(words));
        }
        return text;
    }

    IndexData ReadIndex(const JsonNode& node) {
        mNodes.AllowOnly(node, {"name", "min", "max", "values"});
        constexpr std::int64_t HIGHEST = std::numeric_limits<std::uint32_t>::max();
        IndexData index;
        index.name = mNodes.RequiredText(node, "name");
        std::int64_t min = 0;
        std::int64_t max = HIGHEST;
        if (const JsonNode* values = mNodes.Optional(node, "values", Kind::Object)) {
            index.isEnum = true;
            index.values = mNodes.Values(*values, 0);
            if (index.values.empty()) {
                mNodes.Fault(values->offset, "an enumerated index must have a value");
            } else {
                const auto [lowest, highest] =
                    std::ranges::minmax(index.values, {}, &NamedValues::value_type::second);
                min = lowest.second;
                max = highest.second;
            }
        }
        index.min = mNodes.Number(node, "min", 0, HIGHEST, min);
        index.max = mNodes.Number(node, "max", 0, HIGHEST, max);
        CheckOrder(node, index.min, index.max);
        return index;
    }

    void ReadDefaults(const JsonNode& node, KeyData& key) {
        const JsonNode* one = mNodes.Optional(node, "default", Kind::String);
        const JsonNode* many = mNodes.Optional(node, "defaults", Kind::Object);
        if (one != nullptr && !key.indexes.empty()) {
            mNodes.Fault(one->offset,
                         "a key with indexes takes \"defaults\", with one member per index list");
        }
        if (many != nullptr && key.indexes.empty()) {
            mNodes.Fault(many->offset, "a key without indexes takes \"default\"");
        }
        if (one != nullptr) AddDefault(key, {}, *one);
        if (many == nullptr) return;
        for (const JsonNode::Member& member : many->members) {
            if (!mNodes.Expect(member.value, Kind::String, "a default value")) continue;
            if (!IsIndexList(member.name, key.indexes.size())) {
                mNodes.Fault(member.offset, "\"" + member.name + "\" is not a list of " +
                                                std::to_string(key.indexes.size()) + " indexes");
            }
            AddDefault(key, member.name, member.value);
        }
    }

    void AddDefault(KeyData& key, std::string indexes, const JsonNode& value) {
        if (mData.name == STR_SUBSYSTEM_GNSS) {
            mNodes.Fault(value.offset,
                         "the text format has no subsystem gnss, so its keys cannot have defaults");
        } else if (key.psid == 0) {
            mNodes.Fault(value.offset, "a key without a number cannot have a default");
        } else if (value.text.find_first_not_of(" \t") == std::string::npos) {
            mNodes.Fault(value.offset, "a default value must not be empty");
        } else if (!IsOneLogicalLine(value.text) || value.text.find('\0') != std::string::npos) {
            mNodes.Fault(value.offset, "a default value must be one line without comments");
        }
        key.defaults.push_back({std::move(indexes), value.text, mNodes.PlaceOf(value.offset)});
    }

    /// Accepts decimal numbers without leading zeros, so that each list has only one spelling.
    static bool IsIndexList(std::string_view text, std::size_t count) {
        for (;;) {
            const std::string_view number = text.substr(0, text.find('.'));
            const bool digits = std::ranges::all_of(number, [](char c) { return c >= '0' && c <= '9'; });
            if (number.empty() || number.size() > 10 || !digits || (number.size() > 1 && number[0] == '0'))
                return false;
            if (std::stoull(std::string(number)) > std::numeric_limits<std::uint32_t>::max()) return false;
            if (count-- == 0) return false;
            if (number.size() == text.size()) return count == 0;
            text.remove_prefix(number.size() + 1);
        }
    }

    /// Gives every record without a uid the next free one, in source order.
    void CountUids() {
        std::set<std::int32_t> used;
        for (const auto& [node, uid] : mRecords) {
            if (uid != 0 && !used.insert(uid).second) {
                mNodes.Fault(node->Find("uid")->offset, "another record has the uid " + std::to_string(uid));
            }
        }
        std::int32_t next = 1;
        const auto count = [&](RecordData& record) {
            if (record.uid != 0) return;
            while (used.contains(next)) ++next;
            record.uid = next++;
        };
        for (KeyData& key : mData.keys) count(key);
        for (StructType& type : mData.structs) {
            for (FieldData& field : type.fields) count(field);
        }
    }

    void CheckTypes() {
        const std::optional<TypeFault> fault = FindTypeFault(mData);
        if (!fault) return;
        if (fault->key != nullptr) {
            const JsonNode& node = *mKeyNodes[static_cast<std::size_t>(fault->key - mData.keys.data())];
            const JsonNode* type = node.Find("type");
            mNodes.Fault(type == nullptr ? node.offset : type->offset, fault->text);
            return;
        }
        const auto found = mTypes.find(fault->structName);
        const std::size_t offset = found == mTypes.end() ? mObject.offset : found->second->offset;
        mNodes.Fault(offset, "struct \"" + fault->structName + "\": " + fault->text);
    }

    static const IntegerType* FindIntegerType(std::string_view name) {
        const IntegerType* found = std::ranges::find(INTEGER_TYPES, name, &IntegerType::name);
        return found == std::end(INTEGER_TYPES) ? nullptr : found;
    }

    SourceNodes& mNodes;
    const JsonNode& mObject;
    SubsystemData mData;
    std::map<std::string, const JsonNode::Member*, std::less<>> mTypes;
    std::set<std::string> mKeyNames;
    std::set<std::uint32_t> mPsids;
    std::vector<const JsonNode*> mKeyNodes;  ///< in the order of the keys
    /// All records, with the uid given in the source; 0 for none.
    std::vector<std::pair<const JsonNode*, std::int32_t>> mRecords;
};

void CheckSubsystemNames(SourceNodes& nodes, const JsonNode& list,
                         const std::vector<SubsystemData>& subsystems) {
    for (std::size_t i = 0; i < subsystems.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            for (const std::string* word : {&subsystems[i].name, &subsystems[i].alias}) {
                if (word->empty() || (!EqualsIgnoringCase(*word, subsystems[j].name) &&
                                      !EqualsIgnoringCase(*word, subsystems[j].alias))) {
                    continue;
                }
                nodes.Fault(list.items[i].offset,
                            "another subsystem has the name or alias \"" + *word + "\"");
            }
        }
    }
}

SystemData ReadSystem(SourceNodes& nodes, const JsonNode& object) {
    nodes.AllowOnly(object, {"label", "description", "version", "build_date", "chip", "subsystems"});
    SystemData system;
    system.label = nodes.RequiredText(object, "label");
    if (system.label.find_first_of(" \t\r\n\v\f") != std::string::npos) {
        nodes.Fault(object.Find("label")->offset, "a label must not contain whitespace");
    }
    system.description = nodes.Text(object, "description");
    system.version = nodes.Text(object, "version");
    system.buildDate = nodes.Text(object, "build_date");
    if (const JsonNode* chip = nodes.Required(object, "chip", Kind::Object)) {
        nodes.AllowOnly(*chip, {"name", "id", "rom_name", "rom_version"});
        system.chipName = nodes.RequiredText(*chip, "name");
        system.chipId = static_cast<std::int32_t>(nodes.RequiredNumber(*chip, "id", 0, 0xFFFF));
        system.romName = nodes.Text(*chip, "rom_name");
        system.romVersion = nodes.Text(*chip, "rom_version");
    }
    if (const JsonNode* list = nodes.Required(object, "subsystems", Kind::Array)) {
        const std::size_t before = list->items.size();
        nodes.EachObject(list, "a subsystem", [&](const JsonNode& subsystem) {
            system.subsystems.push_back(SubsystemSource(nodes, subsystem).Read());
        });
        // Items that are not objects were skipped: items and subsystems then no longer correspond.
        if (system.subsystems.size() == before) CheckSubsystemNames(nodes, *list, system.subsystems);
    }
    return system;
}

}  // namespace

void ReadJsonSource(std::string_view text, std::uint32_t file, std::vector<SystemData>& systems,
                    std::vector<SourceFault>& faults) {
    SourceNodes nodes(text, file, faults);
    JsonNode root;
    std::size_t offset = 0;
    std::string fault;
    if (!ParseJson(text, root, offset, fault)) {
        nodes.Fault(offset, fault);
        return;
    }
    if (!nodes.Expect(root, Kind::Object, "the source")) return;
    nodes.AllowOnly(root, {"$schema", "systems"});
    nodes.EachObject(nodes.Required(root, "systems", Kind::Array), "a system", [&](const JsonNode& object) {
        SystemData system = ReadSystem(nodes, object);
        if (std::ranges::find(systems, system.label, &SystemData::label) != systems.end()) {
            nodes.Fault(object.offset, "another system has the label \"" + system.label + "\"");
        }
        systems.push_back(std::move(system));
    });
}

}  // namespace VemoKesConfigTools::metadb
