#pragma once

#include "metadb/MetadataDatabase.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <utility>

namespace KesBench {

namespace metadb = VemoKesConfigTools::metadb;

/// A database of one subsystem with this many keys, and texts for it, in files that go with the benchmark.
class Workload {
public:
    /// With `items`, there is also a key with an array that has room for as many.
    explicit Workload(std::int64_t keys, std::int64_t items = 0) {
        mFolder = std::filesystem::temp_directory_path() / ("kes-bench-" + std::to_string(getpid()));
        std::filesystem::create_directory(mFolder);
        metadb::SubsystemData bt;
        bt.name = "bt";
        for (std::int64_t i = 1; i <= keys; ++i) {
            metadb::KeyData key;
            key.uid = static_cast<std::int32_t>(i);
            key.psid = static_cast<std::uint32_t>(i);
            key.name = "rf_parameter_" + std::to_string(i);
            key.type = i % 4 == 0 ? "octet_string" : i % 4 == 1 ? "uint8" : i % 4 == 2 ? "int32" : "uint16";
            key.max = 127;
            bt.keys.push_back(std::move(key));
        }
        if (items > 0) {
            metadb::KeyData list;
            list.uid = static_cast<std::int32_t>(keys + 1);
            list.psid = static_cast<std::uint32_t>(keys + 1);
            list.name = "rf_list";
            list.type = "uint16";
            list.format = "unsigned_decimal";
            list.max = 65535;
            list.isArray = true;
            list.arrayMax = items;
            bt.keys.push_back(std::move(list));
        }
        metadb::SystemData system;
        system.label = "bench";
        system.chipId = 76;
        system.subsystems = {std::move(bt)};
        metadb::WriteDatabase(Database(), {system});
    }
    Workload(const Workload&) = delete;
    Workload& operator=(const Workload&) = delete;
    ~Workload() { std::filesystem::remove_all(mFolder); }

    std::string Database() const { return (mFolder / "bench.db").string(); }
    std::string Folder() const { return (mFolder / "chunks").string(); }
    std::string ArrayText(std::int64_t items) const {
        const std::string path = (mFolder / "bench.ktf").string();
        std::ofstream file(path, std::ios::binary);
        file << "version=bench\nfile=bt1\nrf_list = {0";
        for (std::int64_t i = 1; i < items; ++i) file << ", " << i % 65536;
        file << "}\n";
        return path;
    }
    std::string Text(std::int64_t keys, bool withPrefix) const {
        const std::string path = (mFolder / "bench.ktf").string();
        std::ofstream file(path, std::ios::binary);
        file << "version=bench\nfile=bt1\n";
        for (std::int64_t i = 1; i <= keys; ++i) {
            file << (withPrefix ? "bt3." : "") << "rf_parameter_" << i
                 << (i % 4 == 0   ? " = [ 01 02 03 04 ]\n"
                     : i % 4 == 1 ? " = 0x5A\n"
                                  : " = 100\n");
        }
        return path;
    }

private:
    std::filesystem::path mFolder;
};

}  // namespace KesBench
