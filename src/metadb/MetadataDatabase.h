#pragma once

#include "metadb/HeadTables.h"
#include "metadb/MetadataModel.h"
#include "metadb/Sqlite.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// What marks a file as a metadata database: the letters "KESM", and the version of its tables.
inline constexpr std::int32_t APPLICATION_ID = 0x4B45534D;
inline constexpr std::int32_t SCHEMA_VERSION = 2;

/// A metadata database that is read. Every operation throws `DatabaseError` when the file is missing, is no
/// metadata database, or is damaged.
class MetadataDatabase {
public:
    /// Opens the file, read-only, and checks what it is: its version, its tables, its list of subsystems.
    explicit MetadataDatabase(const std::string& path);

    /// All systems in the order of the source; their subsystems without types and keys.
    const std::vector<SystemData>& Systems() const { return mHead.systems; }
    /// All that is known of one subsystem, checked by its digest.
    SubsystemData Load(const std::string& label, const std::string& subsystem);
    /// Whole systems, each subsystem checked by its digest.
    std::vector<SystemData> LoadAll();
    /// SQLite's own check of the file, and of what its rows refer to. The subsystems are checked by loading
    /// them.
    void CheckFile();

private:
    void CheckTables();
    /// Rows of a list count from 0.
    void CheckPosition(const SqliteStatement& row, int column, std::size_t expected) const;
    NamedValues Values(SqliteStatement& rows);
    void LoadTypes(std::int64_t id, SubsystemData& subsystem);
    void LoadKeys(std::int64_t id, SubsystemData& subsystem);

    Sqlite mDatabase;
    HeadTables mHead;
};

/// The bytes of a database file of these systems. Equal systems give equal bytes.
std::string SerializeDatabase(const std::vector<SystemData>& systems);

}  // namespace VemoKesConfigTools::metadb
