// This library, by way of the host API, the plug-ins of a folder and a real database.

#include "bench/Subject.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"

#include <stdexcept>

namespace KesBench {

namespace {

using namespace VEMO::Kes::ConfigurationTools;

constexpr std::int32_t LAYER = LayerIndexVals::Minimum;

class KesSubject final : public Subject {
public:
    explicit KesSubject(const Workload& workload) {
        Framework::Init(KES_BENCH_PLUGIN_DIR);
        mFacade = std::make_unique<FrameworkFacade>(workload.Database());
        mFacade->OwningChip(
            std::make_shared<Chip>("", Workload::CHIP_ID, "", "", Workload::SYSTEM, "", "", ""));
    }

    void Load(const std::string& path) override {
        if (!mFacade->LoadText(path, false)) throw std::runtime_error("the workload has errors");
    }
    void Clear() override { mFacade->LoadBlank(); }
    std::size_t Keys() const override {
        std::size_t keys = 0;
        const auto places = mFacade->GetPlaces();
        for (const auto& place : *places) keys += place->KeyCount();
        return keys;
    }
    std::string Get(std::size_t prepared) override {
        const Key& key = mKeys[prepared];
        return mFacade->GetValue(key.subsystem, key.psid, nullptr, LAYER).ToNarrow();
    }
    void Set(std::size_t prepared, const std::string& text) override {
        const Key& key = mKeys[prepared];
        if (!mFacade->SetValue(key.subsystem, key.psid, nullptr, DEVICE_TYPE_EEPROM, key.store, LAYER, text))
            throw std::runtime_error("not set");
    }
    void Save(const std::string& path) override {
        if (!mFacade->SaveText(path)) throw std::runtime_error("not saved");
    }
    void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) override {
        std::vector<std::shared_ptr<Subsystem>> subsystems;
        for (const char* name : Workload::NAMES)
            subsystems.push_back(std::make_shared<Subsystem>(name, "", "", "", "", "", ""));
        mKeys.clear();
        for (const std::size_t key : keys) {
            const std::size_t place = workload.PlaceOf(key);
            mKeys.push_back({subsystems[place / 2], static_cast<std::int32_t>(workload.PsidOf(key)),
                             static_cast<std::int32_t>(place % 2 + 1)});
        }
    }
    Workload::Format Format() const override { return Workload::Format::Kes; }

private:
    struct Key {
        std::shared_ptr<Subsystem> subsystem;
        std::int32_t psid;
        std::int32_t store;
    };
    std::unique_ptr<FrameworkFacade> mFacade;
    std::vector<Key> mKeys;
};

}  // namespace

std::unique_ptr<Subject> MakeKes(const Workload& workload) { return std::make_unique<KesSubject>(workload); }

}  // namespace KesBench
