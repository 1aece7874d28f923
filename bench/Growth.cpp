// Shows that no step of the library takes the square of what it is given: growth [--small]. Each kind of text
// is made once of some size and once of four times that, and every step's processor time is compared. Exit
// code 1 when four times as much takes more than six times as long.

#include "bench/GrowthTexts.h"
#include "facade/Framework.h"
#include "facade/FrameworkFacade.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/EditText.h"
#include "messages/CTheMsgHnd.h"
#include "model/CMetadataProviderFactory.h"
#include "model/IMetadataProvider.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace VEMO::Kes::ConfigurationTools;
using namespace KesBench;
using VemoKesConfigTools::CMessageHandler;
using VemoKesConfigTools::CMetadataProviderFactory;
using VemoKesConfigTools::CTextIndex;
using VemoKesConfigTools::CTheMsgHnd;
using VemoKesConfigTools::IMetadataProvider;
using VemoKesConfigTools::TextChange;
using VemoKesConfigTools::TextLine;
using VemoKesConfigTools::TextPlace;

constexpr std::size_t FACTOR = 4;
constexpr double MOST = 6;
constexpr double LEAST = 0.1;  ///< milliseconds below which nothing is compared
constexpr int RUNS = 5;
constexpr int TRIES = 3;  ///< of a step that seems to be too slow, since others use the machine too

/// A facade, a text and what came of it, of one size.
class Subject {
public:
    Subject(FrameworkFacade& facade, IMetadataProvider& provider) : mFacade(facade), mProvider(provider) {
        mFacade.OwningChip(std::make_shared<Chip>("", 76, "", "", GROWTH_SYSTEM, "", "", ""));
    }
    void Take(const GrowthText& kind, std::size_t size) {
        mText = kind.make(size);
        mTextFile = mFolder.Write("growth.ktf", mText);
        mIsGood = kind.isGood;
        for (const char* name : {"chunks", "image"}) std::filesystem::remove_all(mFolder / name);
    }

    void Load() { Expect(mFacade.LoadText(mTextFile, false) == mIsGood, "load"); }
    void Merge() { Expect(mFacade.LoadText(mTextFile, true) == mIsGood, "merge"); }
    void Index() {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "growth", false)
            .ClearError(CMessageHandler::GROUP_DEFAULT);
        mIndex.emplace(mText, mProvider, GROWTH_SYSTEM);
    }
    void Edit() {
        std::vector<TextChange> changes;
        std::set<std::tuple<TextPlace, std::uint32_t, std::vector<std::uint32_t>>> keys;
        for (const TextLine& line : mIndex->Lines()) {
            if (line.effect == TextLine::Effect::None) continue;
            if (!keys.emplace(line.place, line.psid, line.indices).second) continue;
            TextChange change;
            change.place = line.place;
            change.psid = line.psid + (changes.size() % 2 == 0 ? 0U : 10 * GROWTH_KEYS);
            change.indices = line.indices;
            change.key = "k";
            change.value = "1";
            change.isRemoval = changes.size() % 3 == 0;
            change.subsystemWord = "app";
            changes.push_back(std::move(change));
        }
        VemoKesConfigTools::EditText(*mIndex, changes);
    }
    void Save() { Expect(mFacade.SaveText(mFolder / "saved.ktf", {false, true}), "save"); }
    void SaveSimple() { Expect(mFacade.SaveText(mFolder / "saved.ktf", {true, true}), "save"); }
    void Values() { Expect(mFacade.GetValues() != nullptr, "list"); }
    void SaveChunks() { Expect(mFacade.SaveBinary(mFolder / "chunks"), "save chunks"); }
    void LoadChunks() { Expect(mFacade.LoadBinary(mFolder / "chunks", false), "load chunks"); }
    void SaveImage() {
        constexpr std::int32_t SIZE_EXPONENT = 24;
        Expect(mFacade.SaveToDeviceKesEeprom(mFolder / "image", SIZE_EXPONENT, 0), "save an image");
    }
    void LoadImage() { Expect(mFacade.LoadFromDeviceKesEeprom(mFolder / "image", false), "load an image"); }

private:
    static void Expect(bool good, const char* what) {
        if (good) return;
        HostString why;
        Framework::GetLastError(why);
        throw std::runtime_error(std::string(what) + ": " + why.ToNarrow());
    }

    FrameworkFacade& mFacade;
    IMetadataProvider& mProvider;
    KesTest::TempFolder mFolder;
    std::string mText;
    std::string mTextFile;
    std::optional<CTextIndex> mIndex;
    bool mIsGood = true;
};

struct Step {
    const char* name;
    void (Subject::*run)();
    bool needsGoodText = false;
};
constexpr Step STEPS[] = {
    {"load", &Subject::Load},
    {"merge", &Subject::Merge},
    {"index", &Subject::Index},
    {"edit", &Subject::Edit},
    {"list", &Subject::Values},
    {"save", &Subject::Save},
    {"save simple", &Subject::SaveSimple},
    {"save chunks", &Subject::SaveChunks, true},
    {"load chunks", &Subject::LoadChunks, true},
    {"save image", &Subject::SaveImage, true},
    {"load image", &Subject::LoadImage, true},
};

double Milliseconds(Subject& subject, void (Subject::*step)()) {
    const std::clock_t start = std::clock();
    (subject.*step)();
    return 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

struct Growth {
    double small = 0;
    double large = 0;
    double Ratio() const { return large / std::max(small, LEAST); }
};

double Median(std::array<double, RUNS> times) {
    std::ranges::sort(times);
    return times[RUNS / 2];
}

Growth Measure(Subject& small, Subject& large, void (Subject::*step)()) {
    Growth best{0, std::numeric_limits<double>::infinity()};
    for (int i = 0; i < TRIES && best.Ratio() > MOST; ++i) {
        std::array<double, RUNS> smalls{};
        std::array<double, RUNS> larges{};
        for (int run = 0; run < RUNS; ++run) {
            smalls[static_cast<std::size_t>(run)] = Milliseconds(small, step);
            larges[static_cast<std::size_t>(run)] = Milliseconds(large, step);
        }
        const Growth growth{Median(smalls), Median(larges)};
        if (growth.Ratio() < best.Ratio()) best = growth;
    }
    return best;
}

}  // namespace

int main(int argc, char** argv) {
    const bool isSmall = argc == 2 && std::strcmp(argv[1], "--small") == 0;
    const KesTest::TempFolder folder;
    const std::string database = folder / "growth.db";
    WriteGrowthDatabase(database);
    Framework::Init(KES_BENCH_PLUGIN_DIR);
    FrameworkFacade facade(database);
    FrameworkFacade other(database);
    const std::unique_ptr<IMetadataProvider> provider(
        CMetadataProviderFactory::Ref().Create("sqlite", database));
    Subject small(facade, *provider);
    Subject large(other, *provider);

    std::printf("How many times as long four times as much takes; less than %.0f is good.\n\n| text | size |",
                MOST);
    for (const Step& step : STEPS) std::printf(" %s |", step.name);
    std::printf("\n|---|---|");
    for (std::size_t i = 0; i < std::size(STEPS); ++i) std::printf("---|");
    bool isGood = true;
    for (const GrowthText& kind : GrowthTexts()) {
        const std::size_t size = isSmall ? kind.size / FACTOR : kind.size;
        small.Take(kind, size);
        large.Take(kind, size * FACTOR);
        std::printf("\n| %s | %zu |", kind.name, size);
        for (const Step& step : STEPS) {
            if (step.needsGoodText && !kind.isGood) {
                std::printf(" |");
                continue;
            }
            const Growth growth = Measure(small, large, step.run);
            if (growth.large > LEAST) std::printf(" %.1f", growth.Ratio());
            if (growth.Ratio() > MOST) {
                isGood = false;
                std::printf(" (%.3g to %.3g ms)", growth.small, growth.large);
                std::fprintf(stderr, "growth: %s, %s: four times as much takes %.1f times as long\n",
                             kind.name, step.name, growth.Ratio());
            }
            std::printf(" |");
            std::fflush(stdout);
        }
    }
    std::printf("\n");
    return isGood ? 0 : 1;
}
