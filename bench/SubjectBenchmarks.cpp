// The same measurements for every library. A benchmark is named "OPERATION/LIBRARY/KEYS".

#include "bench/Subject.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <malloc.h>
#include <stdexcept>

namespace {

using KesBench::Subject;
using KesBench::Workload;
using Maker = std::unique_ptr<Subject> (*)(const Workload&);

/// A loaded subject; the last one is kept, since the operations of one library and size stand together.
struct Loaded {
    Loaded(Maker maker, std::size_t keys) : make(maker), workload(keys), subject(maker(workload)) {
        path = workload.Text(subject->Format());
        subject->Load(path);
        if (subject->Keys() != keys) throw std::runtime_error("not all keys were read");
    }
    static Loaded& Of(Maker maker, std::size_t keys) {
        static std::unique_ptr<Loaded> last;
        if (!last || last->make != maker || last->workload.Keys() != keys) {
            last.reset();
            last = std::make_unique<Loaded>(maker, keys);
        }
        return *last;
    }
    /// Numbers of keys with an integer, evenly over all.
    std::vector<std::size_t> Integers(std::size_t count) const {
        std::vector<std::size_t> keys;
        for (std::size_t i = 0; i < count; ++i)
            keys.push_back(workload.IntegerNear(i * workload.Keys() / count));
        return keys;
    }
    Maker make;
    Workload workload;
    std::unique_ptr<Subject> subject;
    std::string path;
};

std::size_t InUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void Load(benchmark::State& state, Maker maker) {
    Loaded& loaded = Loaded::Of(maker, static_cast<std::size_t>(state.range(0)));
    Subject& subject = *loaded.subject;
    for (auto _ : state) {
        state.PauseTiming();
        subject.Clear();
        state.ResumeTiming();
        subject.Load(loaded.path);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    subject.Clear();
    const std::size_t before = InUse();
    subject.Load(loaded.path);
    // The text that this library keeps of the last load was there before, too, so it is not in the
    // difference.
    const std::size_t held = InUse() - before;
    state.counters["bytes/key"] = static_cast<double>(held) / static_cast<double>(state.range(0));
}

void Save(benchmark::State& state, Maker maker) {
    Loaded& loaded = Loaded::Of(maker, static_cast<std::size_t>(state.range(0)));
    const std::string path = loaded.path + ".saved";
    for (auto _ : state) {
        // To write over a file makes some file systems wait for the disk, which hides what differs.
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        loaded.subject->Save(path);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Ten keys in turn, all over the configuration; or so many that nothing of a key is in the caches.
template <typename Operation>
void OneKey(benchmark::State& state, Maker maker, std::size_t spread, Operation operation) {
    Loaded& loaded = Loaded::Of(maker, static_cast<std::size_t>(state.range(0)));
    const std::vector<std::size_t> keys = loaded.Integers(std::min(spread, loaded.workload.Keys()));
    loaded.subject->Prepare(loaded.workload, keys);
    loaded.subject->Set(0, "7");
    // Here this library gives lines of a text.
    const std::string got = loaded.subject->Get(0);
    if (const std::size_t last = got.find_last_not_of('\n'); last == std::string::npos || got[last] != '7')
        throw std::runtime_error("the value is not the one that was set");
    // A step that has no factor in common with the count visits all, each far from the one before.
    const std::size_t step = keys.size() / 3 * 2 + 1;
    std::size_t i = 0;
    for (auto _ : state) {
        operation(*loaded.subject, i);
        i = (i + step) % keys.size();
    }
}

constexpr std::size_t TEN = 10;
constexpr std::size_t MANY = 50021;

void Get(benchmark::State& state, Maker maker, std::size_t spread) {
    OneKey(state, maker, spread,
           [](Subject& subject, std::size_t key) { benchmark::DoNotOptimize(subject.Get(key)); });
}

void Set(benchmark::State& state, Maker maker, std::size_t spread) {
    const std::string text = "7";
    OneKey(state, maker, spread, [&](Subject& subject, std::size_t key) { subject.Set(key, text); });
}

void Register(const std::string& library, Maker maker, const std::vector<std::int64_t>& sizes) {
    using benchmark::RegisterBenchmark;
    for (const std::int64_t keys : sizes) {
        const auto name = [&](const char* operation) { return operation + ("/" + library); };
        RegisterBenchmark(name("Load").c_str(), Load, maker)->Arg(keys)->Unit(benchmark::kMillisecond);
        RegisterBenchmark(name("Save").c_str(), Save, maker)->Arg(keys)->Unit(benchmark::kMillisecond);
        RegisterBenchmark(name("Get").c_str(), Get, maker, TEN)->Arg(keys)->Unit(benchmark::kMicrosecond);
        RegisterBenchmark(name("Set").c_str(), Set, maker, TEN)->Arg(keys)->Unit(benchmark::kMicrosecond);
        RegisterBenchmark(name("GetSpread").c_str(), Get, maker, MANY)
            ->Arg(keys)
            ->Unit(benchmark::kMicrosecond);
        RegisterBenchmark(name("SetSpread").c_str(), Set, maker, MANY)
            ->Arg(keys)
            ->Unit(benchmark::kMicrosecond);
    }
}

const bool registered = [] {
    Register("kes", KesBench::MakeKes, {10, 1000, 10000, 100000, 1000000});
#ifdef KES_BENCH_PEERS
    Register("toml++", KesBench::MakeToml, {1000, 100000});
    Register("nlohmann", KesBench::MakeNlohmann, {1000, 100000});
    Register("rapidjson", KesBench::MakeRapidJson, {1000, 100000});
    Register("libconfig", KesBench::MakeLibconfig, {1000, 100000});
#endif
    return true;
}();

}  // namespace
