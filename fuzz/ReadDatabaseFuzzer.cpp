// A database file with any bytes changed. The input is a list of changes of a good file: three bytes for the
// place, one for the new byte. An input that begins as a database does is a whole file. It is read, or
// refused with a reason; nothing else is allowed.

#include "ScratchFile.h"
#include "metadb/MetadataDatabase.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace VemoKesConfigTools::metadb;

/// A small database with a record of each kind.
std::string GoodFile() {
    SystemData system;
    system.label = "sys_1_0";
    system.chipName = "chip";
    system.chipId = 70;
    SubsystemData& subsystem = system.subsystems.emplace_back();
    subsystem.name = "bt";
    subsystem.alias = "blue";
    subsystem.enums.push_back({"mode", {{"off", 0}, {"on", 1}}});
    FieldData field;
    field.uid = 3;
    field.name = "level";
    field.type = "uint8";
    field.max = 9;
    subsystem.structs.push_back({"limits", {field}});
    for (const char* type : {"mode", "limits", "uint8"}) {
        KeyData& key = subsystem.keys.emplace_back();
        key.uid = static_cast<std::int32_t>(subsystem.keys.size()) + 10;
        key.psid = static_cast<std::uint32_t>(subsystem.keys.size());
        key.name = std::string("key_") + type;
        key.type = type;
        key.max = 9;
        key.defaults.push_back({"", "1", {}});
    }
    subsystem.keys.back().indexes.push_back({"row", 0, 3, false, {}});
    return SerializeDatabase({system});
}

std::string FileOf(const std::uint8_t* data, std::size_t size) {
    static const std::string good = GoodFile();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.starts_with("SQLite format 3")) return std::string(input);
    std::string file = good;
    for (; size >= 4; data += 4, size -= 4) {
        const std::size_t place =
            (std::size_t{data[0]} << 16U | std::size_t{data[1]} << 8U | data[2]) % file.size();
        file[place] = static_cast<char>(data[3]);
    }
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const KesFuzz::ScratchFile scratch;
    scratch.Write(FileOf(data, size));
    try {
        MetadataDatabase(scratch.Path()).LoadAll();
    } catch (const DatabaseError& error) {
        if (*error.what() == '\0') std::abort();
    }
    return 0;
}
