// What loading a text costs, through the host API and the real plug-ins. The metadata is loaded before the
// clock runs.

#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "metadb/MetadataDatabase.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

using namespace VEMO::Kes::ConfigurationTools;
namespace metadb = VemoKesConfigTools::metadb;

namespace {

/// A database of one subsystem with this many keys, and texts for it, in files that go with the benchmark.
class Workload {
public:
    explicit Workload(std::int64_t keys) {
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

void Load(benchmark::State& state, bool withPrefix) {
    const std::int64_t keys = state.range(0);
    const Workload workload(keys);
    const std::string path = workload.Text(keys, withPrefix);
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    FrameworkFacade facade(workload.Database());
    facade.OwningChip(std::make_shared<Chip>("", 76, "", "", "bench", "", "", ""));
    if (!facade.LoadText(path, false)) throw std::runtime_error("the workload has errors");
    facade.LoadBlank();
    const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    facade.LoadText(path, false);
    // The buffer holds the text once more; that is no cost of a key.
    const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
    const auto text = static_cast<double>(std::filesystem::file_size(path));
    for (auto _ : state) {
        state.PauseTiming();
        facade.LoadBlank();
        state.ResumeTiming();
        if (!facade.LoadText(path, false)) state.SkipWithError("load failed");
    }
    state.SetItemsProcessed(state.iterations() * keys);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text));
    state.counters["bytes/key"] =
        (static_cast<double>(after) - static_cast<double>(before) - text) / static_cast<double>(keys);
}

void LoadKeys(benchmark::State& state) { Load(state, false); }
void LoadKeysWithPrefix(benchmark::State& state) { Load(state, true); }

BENCHMARK(LoadKeys)->Arg(10)->Arg(1000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadKeysWithPrefix)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
