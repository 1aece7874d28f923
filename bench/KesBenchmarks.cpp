// What only this library does: chunk folders, long arrays, keys that come and go, metadata.

#include "bench/Workload.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "metadata/NetMetadataProvider.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace VEMO::Kes::ConfigurationTools;
using KesBench::Workload;

std::unique_ptr<FrameworkFacade> LoadedFacade(const Workload& workload) {
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    auto facade = std::make_unique<FrameworkFacade>(workload.Database());
    facade->OwningChip(std::make_shared<Chip>("", Workload::CHIP_ID, "", "", Workload::SYSTEM, "", "", ""));
    if (!facade->LoadText(workload.Text(Workload::Format::Kes), false))
        throw std::runtime_error("the workload has errors");
    return facade;
}

/// The counter tells the size of the folder to that of the text.
void LoadChunks(benchmark::State& state) {
    const Workload workload(static_cast<std::size_t>(state.range(0)));
    const std::unique_ptr<FrameworkFacade> facade = LoadedFacade(workload);
    const std::string folder = workload.Path("chunks");
    if (!facade->SaveBinary(folder) || !facade->LoadBinary(folder, false))
        throw std::runtime_error("the workload has errors");
    std::uintmax_t size = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) size += file.file_size();
    for (auto _ : state) {
        state.PauseTiming();
        facade->LoadBlank();
        state.ResumeTiming();
        if (!facade->LoadBinary(folder, false)) state.SkipWithError("load failed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["size/text"] =
        static_cast<double>(size) /
        static_cast<double>(std::filesystem::file_size(workload.Text(Workload::Format::Kes)));
}

void RemoveAndAddOneKey(benchmark::State& state) {
    const Workload workload(static_cast<std::size_t>(state.range(0)));
    const std::unique_ptr<FrameworkFacade> facade = LoadedFacade(workload);
    const std::size_t key = workload.IntegerNear(workload.Keys() / 2);
    const std::size_t place = workload.PlaceOf(key);
    const auto psid = static_cast<std::int32_t>(workload.PsidOf(key));
    const auto store = static_cast<std::int32_t>(place % 2 + 1);
    const auto subsystem = std::make_shared<Subsystem>(Workload::NAMES[place / 2], "", "", "", "", "", "");
    for (auto _ : state) {
        for (const char* value : {"", "7"}) {
            if (!facade->SetValue(subsystem, psid, nullptr, DEVICE_TYPE_EEPROM, store,
                                  LayerIndexVals::Minimum, value))
                state.SkipWithError("not changed");
        }
    }
}

/// Opens a database of this many keys and lists the records of all subsystems. To drop them again is not
/// counted.
void ListMetadata(benchmark::State& state) {
    const Workload workload(static_cast<std::size_t>(state.range(0)));
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    for (auto _ : state) {
        NetMetadataProvider provider(workload.Database());
        std::vector<NetMetadataProvider::MetadataMapRef> lists;
        std::size_t records = 0;
        const auto subsystems = provider.GetSubsystems(Workload::SYSTEM);
        for (const auto& subsystem : *subsystems) {
            lists.push_back(
                provider.GetMetadatas(Workload::SYSTEM, "", static_cast<SubsystemTypes>(subsystem->Type())));
            records += lists.back()->Count();
        }
        if (records != workload.Keys()) state.SkipWithError("not all records were listed");
        state.PauseTiming();
        lists.clear();
        provider.Dispose();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(LoadChunks)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(RemoveAndAddOneKey)->Arg(10)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ListMetadata)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
