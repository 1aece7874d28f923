// What saving a text costs, through the host API and the real plug-ins, into a file.

#include "bench/Workload.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

using namespace VEMO::Kes::ConfigurationTools;
using KesBench::Workload;

namespace {

void Save(benchmark::State& state, const Workload& workload, const std::string& text) {
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    FrameworkFacade facade(workload.Database());
    facade.OwningChip(std::make_shared<Chip>("", 76, "", "", "bench", "", "", ""));
    if (!facade.LoadText(text, false)) throw std::runtime_error("the workload has errors");
    const std::string saved = text + ".saved";
    for (auto _ : state) {
        if (!facade.SaveText(saved)) state.SkipWithError("save failed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(saved)));
}

void SaveKeys(benchmark::State& state) {
    const Workload workload(state.range(0));
    Save(state, workload, workload.Text(state.range(0), false));
}

/// One key with an array of this many items.
void SaveItems(benchmark::State& state) {
    const Workload workload(0, state.range(0));
    Save(state, workload, workload.ArrayText(state.range(0)));
}

BENCHMARK(SaveKeys)->Arg(10)->Arg(1000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveItems)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
