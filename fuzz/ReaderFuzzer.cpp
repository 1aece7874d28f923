// Any bytes as a text: the reader comes to an end, and what it tells of the text holds together.

#include "FuzzFixture.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "model/CSubsystemConfig.h"
#include "support/PlainReading.h"

#include <algorithm>
#include <set>

namespace {

using namespace KesFuzz;

constexpr std::size_t PLAIN_LIMIT = 1024;

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

/// Nothing of one pass shows in the next, the trace changes nothing, and one line end is as good as another.
void CheckReadingAgain(const Input& input, const Reading& reading) {
    // Two CR are one line end, and so is one in front of LF: a text that has any is left as it is.
    const bool hasReturns = input.text.find('\r') != std::string::npos;
    std::string text;
    for (const char c : input.text) text += c == '\n' && !hasReturns ? "\r\n" : std::string(1, c);
    CChipConfig config;
    CKesContext context = input.Context();
    const Reading second = Read(text, config, context, Keys());
    if (second.dump != reading.dump) Fault("a second reading differs", reading.dump, second.dump);
    if (second.findings != reading.findings) Fault("other findings", reading.findings, second.findings);
}

/// A bad line costs that line: what is put behind the text is read, unless a comment swallows it or an error
/// ended the pass.
void CheckRecovery(const Input& input, const std::vector<TextFinding>& findings) {
    const bool mayEndInComment = input.text.find('*') != std::string::npos;
    // Joined to the next line, or half of a line end.
    const bool endsOpen = input.text.ends_with('\\') || input.text.ends_with('\r');
    const bool ended = std::ranges::any_of(findings, [](const TextFinding& finding) {
        return finding.code == PE_UNKNOWN_SUBSYSTEM || finding.code == PE_SUBSYSTEM_NOT_SET;
    });
    if (mayEndInComment || endsOpen || ended) return;
    CChipConfig config;
    CKesContext context = input.Context();
    const Reading reading = Read(input.text + "\nfile=app13\nlast=7\n", config, context, Keys());
    CKesContext place = input.Context();
    place.SetSubsystemType(SUBSYSTEM_APP);
    place.SetDevice(IStoreManager::DEVICE_EEPROM);
    place.SetStore(13);
    if (DumpElement(config.Element("4294967295", place)) != "4294967295 last=u8:7") {
        Fault("the lines behind the text are not read", input.text, reading.dump + reading.findings);
    }
}

std::string Place(const CTextReader::Position& at) {
    return std::to_string(at.line) + ":" + std::to_string(at.column) + " " + std::to_string(at.offset) +
           (at.eof ? " end" : "");
}

/// Each character, position and end flag of the filters is that of the plain ones, with comments on and,
/// between quotes, off.
void CheckFilters(const std::string& text) {
    std::istringstream stream(text);
    CUnicodeFile file(&stream);
    CConcatLineFilter joined(&file);
    CLineCommentFilter uncommented(&joined, "#");
    CBlockCommentFilter fast(&uncommented);
    std::istringstream again(text);
    CUnicodeFile plainFile(&again);
    PlainChain plain(plainFile);
    while (!plain.Eof()) {
        const std::size_t ahead = plain.GetPosition().offset % 3 + 1;
        if (fast.PeekString(ahead) != plain.PeekString(ahead))
            Fault("a look ahead differs", text, Place(plain.GetPosition()));
        const char expected = plain.GetChar();
        const char c = fast.GetChar();
        if (c != expected || Place(fast.GetPosition()) != Place(plain.GetPosition()))
            Fault("the filters differ", text, Place(fast.GetPosition()) + " " + Place(plain.GetPosition()));
        if (c == '"') gFiltersEnabled = !gFiltersEnabled;
    }
    gFiltersEnabled = true;
}

/// A line that is read straight from the text has the outcome that its tokens give.
void CheckPlainReading(const Input& input) {
    const std::string fast = Told<CKesConfigReader>(input.text, input.Context(), Keys());
    const std::string plain = Told<PlainConfigReader>(input.text, input.Context(), Keys());
    if (fast != plain) Fault("the plain reader tells another outcome", fast, plain);
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

    CTheMsgHnd::ActivateDebug(false);
    // The plain filters take time that grows with the square of a comment.
    if (input.text.size() <= PLAIN_LIMIT) {
        CheckFilters(input.text);
        CheckPlainReading(input);
    }
    CheckReadingAgain(input, reading);
    CheckRecovery(input, watcher.findings);
    return 0;
}
