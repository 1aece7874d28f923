#pragma once

#include "metadb/MetadataDatabase.h"

#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace KesTest {

namespace metadb = VemoKesConfigTools::metadb;

inline void WriteDatabase(const std::string& path, const std::vector<metadb::SystemData>& systems) {
    std::ofstream(path, std::ios::binary) << metadb::SerializeDatabase(systems);
}

/// Runs SQL on a database, as the `sqlite3` shell does.
inline void ChangeDatabase(const std::string& path, const std::string& sql) {
    sqlite3* opened = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &opened), SQLITE_OK);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
    ASSERT_EQ(sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(opened);
}

/// Updates the digest of the list of systems and subsystems after a change.
inline void RenewHeadDigest(const std::string& path) {
    metadb::Sqlite database(path);
    const std::string digest = std::to_string(metadb::ReadHeadTables(database).digest);
    ChangeDatabase(path, "UPDATE head SET digest = " + digest);
}

}  // namespace KesTest
