#pragma once

#include "metadb/HeadTables.h"
#include "metadb/MetadataModel.h"
#include "metadb/Sqlite.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// Identify a file as a metadata database: the letters "KESM" and the version of its tables.
inline constexpr std::int32_t APPLICATION_ID = 0x4B45534D;
inline constexpr std::int32_t SCHEMA_VERSION = 2;

/// A metadata database opened for reading. Every operation throws `DatabaseError` if the file is missing, is
/// not a metadata database, or is damaged.
class MetadataDatabase {
public:
    /// Opens the file read-only and checks its version, its tables and its list of subsystems.
    explicit MetadataDatabase(const std::string& path);

    /// All systems in source order; their subsystems without types and keys.
    const std::vector<SystemData>& Systems() const { return mHead.systems; }
    /// The complete data of one subsystem, verified by its digest.
    SubsystemData Load(const std::string& label, const std::string& subsystem);
    /// All systems with their complete data, each subsystem verified by its digest.
    std::vector<SystemData> LoadAll();
    /// Runs SQLite's integrity and foreign key checks. Loading a subsystem checks its content.
    void CheckFile();

private:
    void CheckTables();
    /// The positions in a list are consecutive, starting at 0.
    void CheckPosition(const SqliteStatement& row, int column, std::size_t expected) const;
    NamedValues Values(SqliteStatement& rows);
    void LoadTypes(std::int64_t id, SubsystemData& subsystem);
    void LoadKeys(std::int64_t id, SubsystemData& subsystem);

    Sqlite mDatabase;
    HeadTables mHead;
};

/// The bytes of a database file with these systems. Equal systems give equal bytes.
std::string SerializeDatabase(const std::vector<SystemData>& systems);

}  // namespace VemoKesConfigTools::metadb
