#include "metadb/MetadataDatabase.h"
#include "metadb/Schema.h"

namespace VemoKesConfigTools::metadb {

namespace {

using View = std::string_view;

/// Writes systems to an empty database. Each statement is prepared only once.
class Writer {
public:
    explicit Writer(Sqlite& database) : mDatabase(database) {}

    void Add(const SystemData& system) {
        mSystem
            .Bind(View(system.label), View(system.description), View(system.version), View(system.buildDate),
                  View(system.chipName), std::int64_t{system.chipId}, View(system.romName),
                  View(system.romVersion))
            .Run();
        const std::int64_t id = mDatabase.LastRowId();
        for (const SubsystemData& subsystem : system.subsystems) Add(id, subsystem);
    }

private:
    void Add(std::int64_t system, const SubsystemData& subsystem) {
        mSubsystem
            .Bind(system, View(subsystem.name), View(subsystem.alias), View(subsystem.version),
                  View(subsystem.layer), View(subsystem.variant), View(subsystem.description),
                  View(subsystem.buildDate), std::int64_t{DigestOf(subsystem)})
            .Run();
        const std::int64_t id = mDatabase.LastRowId();
        for (const EnumType& type : subsystem.enums) {
            mEnum.Bind(id, View(type.name)).Run();
            const std::int64_t enumId = mDatabase.LastRowId();
            std::int64_t position = 0;
            for (const auto& [name, value] : type.values) {
                mEnumerator.Bind(enumId, position++, View(name), std::int64_t{value}).Run();
            }
        }
        for (const StructType& type : subsystem.structs) {
            mStruct.Bind(id, View(type.name)).Run();
            const std::int64_t structId = mDatabase.LastRowId();
            for (const FieldData& field : type.fields) {
                RunRecord(mField, structId, field, std::int64_t{field.lsb}, std::int64_t{field.width});
            }
        }
        for (const KeyData& key : subsystem.keys) Add(id, key);
    }

    void Add(std::int64_t subsystem, const KeyData& key) {
        RunRecord(mKey, subsystem, key, std::int64_t{key.psid});
        const std::int64_t id = mDatabase.LastRowId();
        std::int64_t position = 0;
        for (const IndexData& index : key.indexes) {
            mIndex.Bind(id, position, View(index.name), index.min, index.max, std::int64_t{index.isEnum})
                .Run();
            std::int64_t valuePosition = 0;
            for (const auto& [name, value] : index.values) {
                mIndexValue.Bind(id, position, valuePosition++, View(name), std::int64_t{value}).Run();
            }
            ++position;
        }
        position = 0;
        for (const DefaultValue& value : key.defaults) {
            mDefault.Bind(id, position++, View(value.indexes), View(value.value)).Run();
        }
    }

    template <typename... More>
    static void RunRecord(SqliteStatement& statement, std::int64_t owner, const RecordData& record,
                          const More&... more) {
        statement
            .Bind(owner, std::int64_t{record.uid}, View(record.name), View(record.type), View(record.label),
                  View(record.description), View(record.descriptionInternal), View(record.format), record.min,
                  record.max, View(record.units), View(record.access), std::int64_t{record.isInternal},
                  std::int64_t{record.isArray}, record.arrayMin, record.arrayMax, View(record.oid),
                  View(record.source), more...)
            .Run();
    }

    Sqlite& mDatabase;
    SqliteStatement mSystem = mDatabase.Prepare(
        "INSERT INTO system (label, description, version, build_date, chip_name, chip_id, rom_name, "
        "rom_version) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    SqliteStatement mSubsystem = mDatabase.Prepare(
        "INSERT INTO subsystem (system_id, name, alias, version, layer, variant, description, build_date, "
        "digest) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    SqliteStatement mEnum = mDatabase.Prepare("INSERT INTO enum_type (subsystem_id, name) VALUES (?, ?)");
    SqliteStatement mEnumerator = mDatabase.Prepare("INSERT INTO enumerator VALUES (?, ?, ?, ?)");
    SqliteStatement mStruct = mDatabase.Prepare("INSERT INTO struct_type (subsystem_id, name) VALUES (?, ?)");
    SqliteStatement mField = mDatabase.Prepare(
        "INSERT INTO field (struct_type_id, " KES_RECORD_COLUMNS
        ", lsb, width) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    SqliteStatement mKey =
        mDatabase.Prepare("INSERT INTO key (subsystem_id, " KES_RECORD_COLUMNS
                          ", psid) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    SqliteStatement mIndex = mDatabase.Prepare("INSERT INTO key_index VALUES (?, ?, ?, ?, ?, ?)");
    SqliteStatement mIndexValue = mDatabase.Prepare("INSERT INTO key_index_value VALUES (?, ?, ?, ?, ?)");
    SqliteStatement mDefault = mDatabase.Prepare("INSERT INTO default_value VALUES (?, ?, ?, ?)");
};

}  // namespace

std::string SerializeDatabase(const std::vector<SystemData>& systems) {
    Sqlite database;
    database.Execute("PRAGMA foreign_keys = ON");
    database.Execute("BEGIN");
    database.Execute(SCHEMA);
    database.Execute(("PRAGMA application_id = " + std::to_string(APPLICATION_ID)).c_str());
    database.Execute(("PRAGMA user_version = " + std::to_string(SCHEMA_VERSION)).c_str());
    Writer writer(database);
    for (const SystemData& system : systems) writer.Add(system);
    // The digest is computed from the rows as a reader will get them.
    database.Prepare("INSERT INTO head VALUES (1, ?)")
        .Bind(std::int64_t{ReadHeadTables(database).digest})
        .Run();
    database.Execute("COMMIT");
    return database.Serialize();
}

}  // namespace VemoKesConfigTools::metadb
