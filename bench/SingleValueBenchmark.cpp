// What one key costs in a configuration of ten keys and in one of a million: it must be the same. Ten keys,
// spread over the configuration, take turns. The benchmarks "AtRandom" touch all keys, so that they also show
// what it costs when nothing of a key is in the caches.

#include "bench/Workload.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace VEMO::Kes::ConfigurationTools;
using KesBench::Workload;

namespace {

constexpr std::int32_t STORE = 1;
constexpr std::int32_t LAYER = LayerIndexVals::Minimum;

/// A configuration of this many keys.
class Configuration {
public:
    explicit Configuration(std::int64_t keys) : mKeys(keys), mWorkload(keys) {
        Framework::Init(KES_BENCH_PLUGIN_DIR);
        mFacade = std::make_unique<FrameworkFacade>(mWorkload.Database());
        mFacade->OwningChip(std::make_shared<Chip>("", 76, "", "", "bench", "", "", ""));
        if (!mFacade->LoadText(mWorkload.Text(keys, false), false))
            throw std::runtime_error("the workload has errors");
    }
    FrameworkFacade& Facade() { return *mFacade; }
    const std::shared_ptr<Subsystem>& Bt() const { return mBt; }
    /// The number of a key that takes "7".
    std::int32_t NextKey(bool atRandom) {
        if (atRandom) {
            mState = mState * 6364136223846793005ULL + 1442695040888963407ULL;
        } else {
            mState += std::uint64_t{1} << 33U;
        }
        const std::uint64_t pick = (mState >> 33U) % static_cast<std::uint64_t>(atRandom ? mKeys : TEN);
        const std::int64_t number = 1 + (atRandom ? static_cast<std::int64_t>(pick)
                                                  : static_cast<std::int64_t>(pick) * (mKeys / TEN));
        return static_cast<std::int32_t>(number % 4 == 0 ? number - 1 : number);
    }
    std::int64_t Keys() const { return mKeys; }

private:
    static constexpr std::int64_t TEN = 10;

    std::int64_t mKeys;
    Workload mWorkload;
    std::unique_ptr<FrameworkFacade> mFacade;
    std::shared_ptr<Subsystem> mBt = std::make_shared<Subsystem>("bt", "", "", "", "", "", "");
    std::uint64_t mState = 1;
};

/// The configuration of the last benchmark, if it is of this size: one of a million keys takes a minute to
/// make.
Configuration& OfSize(std::int64_t keys) {
    static std::unique_ptr<Configuration> last;
    if (!last || last->Keys() != keys) {
        last.reset();
        last = std::make_unique<Configuration>(keys);
    }
    return *last;
}

void Set(benchmark::State& state, bool atRandom) {
    Configuration& all = OfSize(state.range(0));
    const HostString value("7");
    for (auto _ : state) {
        if (!all.Facade().SetValue(all.Bt(), all.NextKey(atRandom), nullptr, DEVICE_TYPE_EEPROM, STORE, LAYER,
                                   value))
            state.SkipWithError("not set");
    }
}

void Get(benchmark::State& state, bool atRandom) {
    Configuration& all = OfSize(state.range(0));
    for (auto _ : state) {
        if (all.Facade().GetValue(all.Bt(), all.NextKey(atRandom), nullptr, LAYER).IsNull())
            state.SkipWithError("not there");
    }
}

void RemoveAndAddOneKey(benchmark::State& state) {
    Configuration& all = OfSize(state.range(0));
    const HostString nothing("");
    const HostString value("7");
    for (auto _ : state) {
        const std::int32_t key = all.NextKey(false);
        const bool removed =
            all.Facade().SetValue(all.Bt(), key, nullptr, DEVICE_TYPE_EEPROM, STORE, LAYER, nothing);
        const bool added =
            all.Facade().AddValue(all.Bt(), key, nullptr, DEVICE_TYPE_EEPROM, STORE, LAYER, value);
        if (!removed || !added) state.SkipWithError("not changed");
    }
}

void SetOneKey(benchmark::State& state) { Set(state, false); }
void SetOneKeyAtRandom(benchmark::State& state) { Set(state, true); }
void GetOneKey(benchmark::State& state) { Get(state, false); }
void GetOneKeyAtRandom(benchmark::State& state) { Get(state, true); }

/// All benchmarks of one size stand together, for the sake of `OfSize`.
bool RegisterAll() {
    for (const std::int64_t keys : {10, 1000, 100000, 1000000}) {
        using Named = std::pair<const char*, void (*)(benchmark::State&)>;
        for (const auto& [name, run] :
             {Named{"SetOneKey", SetOneKey}, Named{"GetOneKey", GetOneKey},
              Named{"RemoveAndAddOneKey", RemoveAndAddOneKey}, Named{"SetOneKeyAtRandom", SetOneKeyAtRandom},
              Named{"GetOneKeyAtRandom", GetOneKeyAtRandom}}) {
            benchmark::RegisterBenchmark(name, run)->Arg(keys)->Unit(benchmark::kMicrosecond);
        }
    }
    return true;
}

const bool registered = RegisterAll();

}  // namespace
