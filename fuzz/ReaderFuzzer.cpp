// Any bytes as a text: the reader comes to an end, and what it tells of the text holds together.

#include "FuzzFixture.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "model/CSubsystemConfig.h"

#include <algorithm>
#include <set>

namespace {

using namespace KesFuzz;

/// Takes the findings and, with the trace on, its lines.
class Watcher final : public CMessageHandlerObserver {
public:
    explicit Watcher(bool trace) {
        CTheMsgHnd::AddObserver(*this);
        if (trace) CTheMsgHnd::ActivateDebug(true);
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    ~Watcher() override {
        CTheMsgHnd::ActivateDebug(false);
        CTheMsgHnd::RemoveObserver(*this);
    }
    void OnFinding(const TextFinding& finding) override { findings.push_back(finding); }
    void OnTrace(const std::string& line) override { traced += line.size(); }
    std::vector<TextFinding> findings;
    std::size_t traced = 0;
};

void CheckFindings(const Input& input, const std::vector<TextFinding>& findings) {
    const auto ends = static_cast<std::size_t>(
        std::ranges::count_if(input.text, [](char c) { return c == '\n' || c == '\r'; }));
    std::uint32_t before = 0;
    for (const TextFinding& finding : findings) {
        // The finding on the number of stores stands at no line, behind all others.
        if (finding.line == 0 && finding.column == 0 && &finding == &findings.back()) continue;
        if (finding.line < before || finding.line > ends + 1 || finding.column == 0) {
            Fault("a finding outside the text, or out of order", input.text, finding.Message());
        }
        before = finding.line;
    }
}

/// The lists that a host walks.
void CheckModel(const CChipConfig& config, CKesContext& context) {
    std::set<std::pair<std::int32_t, std::int32_t>> met;
    for (const CStoreInfo* store : config.Stores()) {
        if (!met.emplace(store->DeviceId(), store->StoreId()).second)
            Fault("a store twice", DumpStores(config.Stores()), {});
    }
    for (const auto& [number, place] : config.Subsystems()) {
        CKesContext question = context;
        question.SetSubsystemType(place->Place().SubsystemType());
        question.SetDevice(place->Place().Device());
        question.SetStore(place->Place().Store());
        for (const CElement* element : place->Elements()) {
            if (!config.Element(element->KeyString(), question).IsValid()) {
                Fault("an element that its key does not find", DumpElement(*element), {});
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input(data, size);
    CChipConfig config;
    CKesContext context = input.Context();
    const Watcher watcher(input.trace);
    const Reading reading = Read(input.text, config, context, Keys());
    if (reading.good != watcher.findings.empty())
        Fault("result and findings differ", input.text, reading.findings);
    if (reading.good != reading.error.empty()) Fault("result and error differ", input.text, reading.error);
    if (!gFiltersEnabled) Fault("comments are no longer seen", input.text, reading.dump);
    CheckFindings(input, watcher.findings);
    CheckModel(config, context);

    // Nothing of one pass may show in the next, and the trace tells without changing anything.
    CTheMsgHnd::ActivateDebug(false);
    CChipConfig again;
    CKesContext context2 = input.Context();
    const Reading second = Read(input.text, again, context2, Keys());
    if (second.dump != reading.dump) Fault("a second reading differs", reading.dump, second.dump);
    if (second.findings != reading.findings) Fault("other findings", reading.findings, second.findings);
    return 0;
}
