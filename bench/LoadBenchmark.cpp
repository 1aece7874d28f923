// What loading a text or a folder of chunk files costs, through the host API and the real plug-ins. The
// metadata is loaded before the clock runs.

#include "bench/Workload.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <malloc.h>
#include <memory>
#include <stdexcept>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesBench::Workload;

namespace {

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

/// The same keys as `LoadKeys` has, from a folder. The counter tells the size of the folder to that of the
/// text.
void LoadChunks(benchmark::State& state) {
    const std::int64_t keys = state.range(0);
    const Workload workload(keys);
    const std::string text = workload.Text(keys, false);
    const std::string folder = workload.Folder();
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    FrameworkFacade facade(workload.Database());
    facade.OwningChip(std::make_shared<Chip>("", 76, "", "", "bench", "", "", ""));
    if (!facade.LoadText(text, false) || !facade.SaveBinary(folder) || !facade.LoadBinary(folder, false))
        throw std::runtime_error("the workload has errors");
    std::uintmax_t size = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) size += file.file_size();
    for (auto _ : state) {
        state.PauseTiming();
        facade.LoadBlank();
        state.ResumeTiming();
        if (!facade.LoadBinary(folder, false)) state.SkipWithError("load failed");
    }
    state.SetItemsProcessed(state.iterations() * keys);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
    state.counters["size/text"] =
        static_cast<double>(size) / static_cast<double>(std::filesystem::file_size(text));
}

BENCHMARK(LoadKeys)->Arg(10)->Arg(1000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadKeysWithPrefix)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadChunks)->Arg(10)->Arg(1000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);

}  // namespace
