#pragma once

#include "metadb/MetadataModel.h"
#include "metadb/Sqlite.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// What marks a file as a metadata database: the letters "KESM", and the version of its tables.
inline constexpr std::int32_t APPLICATION_ID = 0x4B45534D;
inline constexpr std::int32_t SCHEMA_VERSION = 1;

/// A metadata database that is read. Every operation throws `DatabaseError` when the file is missing, is no
/// metadata database, or is damaged.
class MetadataDatabase {
public:
    /// Opens the file, read-only, and checks what it is.
    explicit MetadataDatabase(const std::string& path);

    /// All systems in the order of the source; their subsystems without types and keys.
    std::vector<SystemData> Systems();
    /// All that is known of one subsystem, held against its digest.
    SubsystemData Load(const std::string& label, const std::string& subsystem);
    /// Whole systems, each subsystem held against its digest.
    std::vector<SystemData> LoadAll();
    /// SQLite's own check of the file. The subsystems are checked by loading them.
    void CheckFile();

private:
    SubsystemData SubsystemHeader(const SqliteStatement& row);
    NamedValues Values(SqliteStatement& rows);
    void LoadTypes(std::int64_t id, SubsystemData& subsystem);
    void LoadKeys(std::int64_t id, SubsystemData& subsystem);

    Sqlite mDatabase;
};

/// Makes a new database file of these systems. `path` must not exist; when an exception comes out, the file
/// may be there and is of no use.
void WriteDatabase(const std::string& path, const std::vector<SystemData>& systems);

}  // namespace VemoKesConfigTools::metadb
