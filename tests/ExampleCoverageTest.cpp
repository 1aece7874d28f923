// The examples cover the whole format: their texts have every kind of value that their metadata defines.

#include "metadb/MetadataDatabase.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>

using namespace VemoKesConfigTools::metadb;

namespace {

/// Type, format, array and indexes of a key.
std::string KindOf(const SubsystemData& subsystem, const KeyData& key) {
    std::string type = key.type;
    for (const EnumType& known : subsystem.enums) type = known.name == type ? "enum" : type;
    for (const StructType& known : subsystem.structs) type = known.name == type ? "struct" : type;
    std::size_t enumIndexes = 0;
    for (const IndexData& index : key.indexes) enumIndexes += index.isEnum ? 1U : 0U;
    return type + " " + key.format + (key.isArray ? " array" : "") + " indexes " +
           std::to_string(key.indexes.size()) + "/" + std::to_string(enumIndexes);
}

TEST(Examples, ShowEveryKindOfValue) {
    std::map<std::string, std::map<std::string, std::string>> kinds;  // by label, then by "SUBSYSTEM KEY"
    std::map<std::string, std::map<std::string, std::string>> names;  // of subsystems and aliases
    std::set<std::string> missing;
    for (const SystemData& system : MetadataDatabase(KesTest::EXAMPLE_DATABASE).LoadAll()) {
        for (const SubsystemData& subsystem : system.subsystems) {
            names[system.label][subsystem.name] = subsystem.name;
            names[system.label][subsystem.alias] = subsystem.name;
            for (const KeyData& key : subsystem.keys) {
                const std::string kind = KindOf(subsystem, key);
                kinds[system.label][subsystem.name + " " + key.name] = kind;
                if (subsystem.name != "gnss") missing.insert(kind);
            }
        }
    }
    EXPECT_GT(missing.size(), 50U);
    for (const auto& entry : std::filesystem::directory_iterator(KesTest::EXAMPLE_FOLDER)) {
        const std::string path = entry.path().string();
        if (!path.ends_with(".ktf") || path.find("mistakes") != std::string::npos) continue;
        std::istringstream lines(KesTest::RunKes({"rewrite", "--simple", path}).out);
        std::string label;
        std::string subsystem;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t equals = line.find('=');
            if (equals == std::string::npos) continue;
            const std::string head = line.substr(0, line.find_first_of("=. "));
            std::string value = line.substr(equals + 1);
            if (head == "version") label = value;
            if (head == "file" || head == "subsystem") {
                value.erase(value.find_last_not_of("0123456789") + 1);
                subsystem = names[label][value];
            }
            const auto kind = kinds[label].find(subsystem + " " + head);
            if (kind != kinds[label].end()) missing.erase(kind->second);
        }
    }
    std::string list;
    for (const std::string& kind : missing) list += kind + "\n";
    EXPECT_EQ(list, "");
}

}  // namespace
