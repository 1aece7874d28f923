#include "metadb/MetadataDatabase.h"

#include "metadb/Schema.h"

#include <algorithm>

namespace VemoKesConfigTools::metadb {

namespace {

/// Reads the columns of `KES_RECORD_COLUMNS`, starting at `column`.
void ReadRecord(const SqliteStatement& row, int column, RecordData& record) {
    record.uid = row.Number32(column++);
    for (std::string* text : {&record.name, &record.type, &record.label, &record.description,
                              &record.descriptionInternal, &record.format}) {
        *text = row.Text(column++);
    }
    record.min = row.Number(column++);
    record.max = row.Number(column++);
    record.units = row.Text(column++);
    record.access = row.Text(column++);
    record.isInternal = row.Number(column++) != 0;
    record.isArray = row.Number(column++) != 0;
    record.arrayMin = row.Number(column++);
    record.arrayMax = row.Number(column++);
    record.oid = row.Text(column++);
    record.source = row.Text(column++);
}

}  // namespace

MetadataDatabase::MetadataDatabase(const std::string& path) : mDatabase(path) {
    if (mDatabase.Number("PRAGMA application_id") != APPLICATION_ID) {
        throw DatabaseError(path + ": not a metadata database");
    }
    const std::int64_t version = mDatabase.Number("PRAGMA user_version");
    if (version != SCHEMA_VERSION) {
        throw DatabaseError(path + ": its tables have version " + std::to_string(version) +
                            ", this library reads version " + std::to_string(SCHEMA_VERSION) +
                            "; rebuild it from its source");
    }
    CheckTables();
    mHead = ReadHeadTables(mDatabase);
    if (mDatabase.Number("SELECT digest FROM head") != mHead.digest) {
        throw DatabaseError(path + ": its list of systems is damaged");
    }
}

void MetadataDatabase::CheckTables() {
    // The rows without a text are indexes that SQLite creates for UNIQUE constraints.
    SqliteStatement rows =
        mDatabase.Prepare("SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY rowid");
    std::string schema;
    while (rows.Step()) schema += rows.Text(0) + ";\n";
    if (schema != SCHEMA) {
        throw DatabaseError(mDatabase.Path() + ": its tables are not those of a metadata database");
    }
}

SubsystemData MetadataDatabase::Load(const std::string& label, const std::string& subsystem) {
    const auto row = mHead.subsystems.find(std::pair(label, subsystem));
    if (row == mHead.subsystems.end()) {
        throw DatabaseError(mDatabase.Path() + ": system " + label + " has no subsystem " + subsystem);
    }
    SubsystemData data = row->second.header;
    LoadTypes(row->second.id, data);
    LoadKeys(row->second.id, data);
    const std::string where = mDatabase.Path() + ": subsystem " + subsystem + " of " + label;
    if (row->second.digest != DigestOf(data)) throw DatabaseError(where + " is damaged");
    // A file made by another program can have correct digests and still nest its structs without end.
    if (const std::optional<TypeFault> fault = FindTypeFault(data)) {
        throw DatabaseError(
            where + (fault->key != nullptr ? ": key " + fault->key->name : ": struct " + fault->structName) +
            ": " + fault->text);
    }
    return data;
}

std::vector<SystemData> MetadataDatabase::LoadAll() {
    std::vector<SystemData> systems = mHead.systems;
    for (SystemData& system : systems) {
        for (SubsystemData& subsystem : system.subsystems) subsystem = Load(system.label, subsystem.name);
    }
    return systems;
}

void MetadataDatabase::CheckFile() {
    SqliteStatement rows = mDatabase.Prepare("PRAGMA integrity_check(1)");
    if (rows.Step() && rows.Text(0) != "ok") throw DatabaseError(mDatabase.Path() + ": " + rows.Text(0));
    SqliteStatement strays = mDatabase.Prepare("PRAGMA foreign_key_check");
    if (strays.Step()) {
        throw DatabaseError(mDatabase.Path() + ": a row of the table " + strays.Text(0) +
                            " refers to a missing row of the table " + strays.Text(2));
    }
}

void MetadataDatabase::CheckPosition(const SqliteStatement& row, int column, std::size_t expected) const {
    if (row.Number(column) != static_cast<std::int64_t>(expected)) {
        throw DatabaseError(mDatabase.Path() + ": the rows of a list are damaged");
    }
}

NamedValues MetadataDatabase::Values(SqliteStatement& rows) {
    NamedValues values;
    while (rows.Step()) {
        CheckPosition(rows, 2, values.size());
        values.emplace_back(rows.Text(0), rows.Number32(1));
    }
    return values;
}

void MetadataDatabase::LoadTypes(std::int64_t id, SubsystemData& subsystem) {
    SqliteStatement enums =
        mDatabase.Prepare("SELECT id, name FROM enum_type WHERE subsystem_id = ? ORDER BY id");
    SqliteStatement values = mDatabase.Prepare(
        "SELECT name, value, position FROM enumerator WHERE enum_type_id = ? ORDER BY position");
    enums.Bind(id);
    while (enums.Step()) {
        subsystem.enums.push_back({enums.Text(1), Values(values.Bind(enums.Number(0)))});
    }
    SqliteStatement structs =
        mDatabase.Prepare("SELECT id, name FROM struct_type WHERE subsystem_id = ? ORDER BY id");
    SqliteStatement fields = mDatabase.Prepare(
        "SELECT " KES_RECORD_COLUMNS ", lsb, width FROM field WHERE struct_type_id = ? ORDER BY id");
    structs.Bind(id);
    while (structs.Step()) {
        StructType& type = subsystem.structs.emplace_back(StructType{structs.Text(1), {}});
        fields.Bind(structs.Number(0));
        while (fields.Step()) {
            FieldData& field = type.fields.emplace_back();
            ReadRecord(fields, 0, field);
            field.lsb = fields.Number32(RECORD_COLUMN_COUNT);
            field.width = fields.Number32(RECORD_COLUMN_COUNT + 1);
        }
    }
}

void MetadataDatabase::LoadKeys(std::int64_t id, SubsystemData& subsystem) {
    // The keys of a subsystem normally have consecutive ids. So the range of rows that contains them all is
    // read from each table, in file order. Using an index would look up each row separately and sort them
    // afterwards. The unary "+" below keeps SQLite from using one.
    SqliteStatement stretch =
        mDatabase.Prepare("SELECT count(*), min(id), max(id) FROM key WHERE subsystem_id = ?");
    stretch.Bind(id).Step();
    const auto count = static_cast<std::size_t>(stretch.Number(0));
    const std::int64_t first = stretch.Number(1);
    const std::int64_t last = stretch.Number(2);
    SqliteStatement keys =
        mDatabase.Prepare("SELECT " KES_RECORD_COLUMNS
                          ", psid, id FROM key WHERE id BETWEEN ? AND ? AND +subsystem_id = ? ORDER BY id");
    keys.Bind(first, last, id);
    std::vector<std::int64_t> ids;
    ids.reserve(count);
    subsystem.keys.reserve(count);
    while (keys.Step()) {
        KeyData& key = subsystem.keys.emplace_back();
        ReadRecord(keys, 0, key);
        key.psid = keys.NumberAs<std::uint32_t>(RECORD_COLUMN_COUNT);
        ids.push_back(keys.Number(RECORD_COLUMN_COUNT + 1));
    }
    // Returns null for a key of another subsystem within the range.
    const auto find = [&](std::int64_t keyId) -> KeyData* {
        const auto found = std::ranges::lower_bound(ids, keyId);
        if (found == ids.end() || *found != keyId) return nullptr;
        return &subsystem.keys[static_cast<std::size_t>(found - ids.begin())];
    };
    SqliteStatement indexes = mDatabase.Prepare(
        "SELECT key_id, position, name, min, max, is_enum FROM key_index "
        "WHERE key_id BETWEEN ? AND ? ORDER BY key_id, position");
    SqliteStatement values = mDatabase.Prepare(
        "SELECT name, value, position FROM key_index_value WHERE key_id = ? AND index_position = ? "
        "ORDER BY position");
    indexes.Bind(first, last);
    while (indexes.Step()) {
        KeyData* const key = find(indexes.Number(0));
        if (key == nullptr) continue;
        CheckPosition(indexes, 1, key->indexes.size());
        IndexData index{indexes.Text(2), indexes.Number(3), indexes.Number(4), indexes.Number(5) != 0, {}};
        index.values = Values(values.Bind(indexes.Number(0), indexes.Number(1)));
        key->indexes.push_back(std::move(index));
    }
    SqliteStatement defaults = mDatabase.Prepare(
        "SELECT key_id, position, indexes, value FROM default_value "
        "WHERE key_id BETWEEN ? AND ? ORDER BY key_id, position");
    defaults.Bind(first, last);
    while (defaults.Step()) {
        KeyData* const key = find(defaults.Number(0));
        if (key == nullptr) continue;
        CheckPosition(defaults, 1, key->defaults.size());
        key->defaults.push_back({defaults.Text(2), defaults.Text(3), {}});
    }
}

}  // namespace VemoKesConfigTools::metadb
