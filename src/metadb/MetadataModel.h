#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::metadb {

// A metadata database as plain records, as read from a source or from the tables.

/// A position in a source: line and column counted from 1, the column in bytes. Not stored in a database.
struct SourcePlace {
    std::uint32_t file = 0;  ///< number of the source file, from 0
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

using NamedValues = std::vector<std::pair<std::string, std::int32_t>>;

struct IndexData {
    std::string name;
    std::int64_t min = 0;
    std::int64_t max = 0;
    bool isEnum = false;
    NamedValues values;
};

/// What keys and struct fields have in common. The members that a reader needs for every key come first, so
/// that they share few cache lines.
struct RecordData {
    std::string name;
    std::string type;
    std::string format;
    std::int64_t min = 0;
    std::int64_t max = 0;
    std::int64_t arrayMin = 0;
    std::int64_t arrayMax = 0;
    bool isArray = false;
    bool isInternal = false;
    std::int32_t uid = 0;
    std::string label;
    std::string description;
    std::string descriptionInternal;
    std::string units;
    std::string access;
    std::string oid;
    std::string source;
};

struct DefaultValue {
    std::string indexes;  ///< "3" or "1.2"; empty for a key without indexes
    std::string value;    ///< one logical line of the text format
    SourcePlace place;
};

struct KeyData : RecordData {
    std::uint32_t psid = 0;
    std::vector<IndexData> indexes;
    std::vector<DefaultValue> defaults;
};

struct FieldData : RecordData {
    std::int32_t lsb = 0;
    std::int32_t width = 0;
};

struct EnumType {
    std::string name;
    NamedValues values;
};

struct StructType {
    std::string name;
    std::vector<FieldData> fields;
};

struct SubsystemData {
    std::string name;
    std::string alias;
    std::string version;
    std::string layer;
    std::string variant;
    std::string description;
    std::string buildDate;
    std::vector<EnumType> enums;
    std::vector<StructType> structs;
    std::vector<KeyData> keys;
};

struct SystemData {
    std::string label;
    std::string description;
    std::string version;
    std::string buildDate;
    std::string chipName;
    std::int32_t chipId = 0;
    std::string romName;
    std::string romVersion;
    std::vector<SubsystemData> subsystems;
};

/// The maximum nesting depth of structs, which limits the stack that readers and writers need.
inline constexpr std::size_t MAXIMUM_STRUCT_DEPTH = 100;
/// The maximum number of values in the struct of a key, including those of nested structs; an array counts as
/// one of its items. A host gets a record for each value.
inline constexpr std::size_t MAXIMUM_STRUCT_VALUES = 65'536;

/// A fault in the types of a subsystem: a struct that contains itself or is nested too deeply, or a key whose
/// struct has too many values.
struct TypeFault {
    const KeyData* key;  ///< null if the struct itself is faulty
    std::string structName;
    std::string text;
};
std::optional<TypeFault> FindTypeFault(const SubsystemData& subsystem);

/// A checksum over all records of a subsystem, to detect damage. The same records give the same checksum on
/// every machine.
std::uint32_t DigestOf(const SubsystemData& subsystem);

}  // namespace VemoKesConfigTools::metadb
