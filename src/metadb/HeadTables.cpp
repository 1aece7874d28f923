#include "metadb/HeadTables.h"

#include "metadb/Digester.h"

namespace VemoKesConfigTools::metadb {

namespace {

void AddRow(const SqliteStatement& row, Digester& digest) {
    for (int column = 0; column < row.ColumnCount(); ++column) digest.Add(row.Text(column));
}

}  // namespace

HeadTables ReadHeadTables(Sqlite& database) {
    HeadTables head{};
    Digester digest;
    std::map<std::int64_t, std::size_t> places;
    SqliteStatement systems = database.Prepare(
        "SELECT id, label, description, version, build_date, chip_name, chip_id, rom_name, rom_version "
        "FROM system ORDER BY id");
    while (systems.Step()) {
        AddRow(systems, digest);
        places.emplace(systems.Number(0), head.systems.size());
        head.systems.push_back({systems.Text(1),
                                systems.Text(2),
                                systems.Text(3),
                                systems.Text(4),
                                systems.Text(5),
                                systems.Number32(6),
                                systems.Text(7),
                                systems.Text(8),
                                {}});
    }
    SqliteStatement subsystems = database.Prepare(
        "SELECT id, system_id, digest, name, alias, version, layer, variant, description, build_date "
        "FROM subsystem ORDER BY id");
    while (subsystems.Step()) {
        AddRow(subsystems, digest);
        const auto place = places.find(subsystems.Number(1));
        // A row that belongs to no system is damage, which the digest reveals.
        if (place == places.end()) continue;
        SystemData& system = head.systems[place->second];
        const SubsystemData& header = system.subsystems.emplace_back(SubsystemData{subsystems.Text(3),
                                                                                   subsystems.Text(4),
                                                                                   subsystems.Text(5),
                                                                                   subsystems.Text(6),
                                                                                   subsystems.Text(7),
                                                                                   subsystems.Text(8),
                                                                                   subsystems.Text(9),
                                                                                   {},
                                                                                   {},
                                                                                   {}});
        head.subsystems.emplace(std::pair(system.label, header.name),
                                HeadTables::SubsystemRow{header, subsystems.Number(0), subsystems.Number(2)});
    }
    head.digest = digest.Sum();
    return head;
}

}  // namespace VemoKesConfigTools::metadb
