#pragma once

#include "metadb/MetadataModel.h"
#include "metadb/Sqlite.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// The contents of the tables `system` and `subsystem`, which are read completely when a database is opened.
struct HeadTables {
    struct SubsystemRow {
        SubsystemData header;
        std::int64_t id;
        std::int64_t digest;
    };

    std::vector<SystemData> systems;  ///< in source order; their subsystems without types and keys
    std::map<std::pair<std::string, std::string>, SubsystemRow> subsystems;  ///< by label and name
    std::uint32_t digest;                                                    ///< over the content of all rows
};

HeadTables ReadHeadTables(Sqlite& database);

}  // namespace VemoKesConfigTools::metadb
