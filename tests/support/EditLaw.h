#pragma once

// Properties of every change of a key in a text: reading the changed text gives the same model as making the
// change on the model, there are no new findings, and the bytes around the change are preserved.

#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/EditText.h"
#include "model/CSubsystemConfig.h"
#include "model/SubsystemNames.h"
#include "support/TextReading.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace KesTest {

class EditLaw {
public:
    /// Called for a violation: what it is, the changed text, the expected and the actual model.
    using Fault =
        std::function<void(const std::string&, const std::string&, const std::string&, const std::string&)>;

    EditLaw(std::string text, IMetadataProvider& provider, std::string chip, Fault fault)
        : mProvider(provider),
          mChip(std::move(chip)),
          mFault(std::move(fault)),
          mIndex(Index(std::move(text))),
          mBefore(ReadText(mIndex.Text())) {}

    /// Changes, removes and adds keys, one at a time; every `stride`th line with a key is tried.
    void Check(std::size_t stride) {
        CheckIndex();
        std::size_t number = 0;
        for (const TextLine& line : mIndex.Lines()) {
            const bool isRefused = line.effect == TextLine::Effect::Fails;
            if ((!isRefused && line.effect != TextLine::Effect::Sets) || number++ % stride != 0) continue;
            TextChange change = ChangeAt(line);
            if (isRefused) {
                CheckChange("mend", change, line.value);
                continue;
            }
            if (!IsThere(change)) continue;
            CheckChange("set", change, line.value);
            change.isRemoval = true;
            CheckChange("unset", change, line.all);
        }
        for (const TextPlace& place : Places()) {
            TextChange change;
            change.place = place;
            change.psid = UNUSED_KEY;
            change.key = std::to_string(UNUSED_KEY);
            change.value = VALUE;
            change.subsystemWord = SUBSYSTEM_NAMES[static_cast<std::size_t>(place.subsystem)];
            change.deviceWord = DeviceWord(place.device);
            if (!IsThere(change)) CheckChange("add", change, {});
        }
    }
    /// Whether a line depends on the previous line, so that changing that one affects it.
    bool HasStrayLines() const {
        return std::ranges::any_of(mIndex.Lines(), [](const TextLine& line) { return line.isStray; });
    }
    /// Whether a line appended to the text is read as such: the text does not end in an open comment, after
    /// the point where reading stops, or in an unterminated line, which may have another error when
    /// completed.
    bool EndTakesALine() {
        return mIndex.Text().ends_with('\n') &&
               Index(mIndex.Text() + "1=% 1 %\n").Lines().size() > mIndex.Lines().size();
    }
    std::size_t LineCount() const { return mIndex.Lines().size(); }
    std::size_t tried = 0;

private:
    static constexpr std::uint32_t UNUSED_KEY = 2147480000;
    static constexpr const char* VALUE = "% 1 %";

    struct Outcome {
        std::shared_ptr<CChipConfig> config = std::make_shared<CChipConfig>();
        std::vector<std::string> findings;  ///< without their positions, which change
    };

    CTextIndex Index(std::string text) {
        const Messages messages;
        return {std::move(text), mProvider, mChip};
    }
    CKesContext Context() const {
        CKesContext context = OverwriteContext();
        context.SetChip(mChip);
        return context;
    }
    /// The text of each finding.
    static std::vector<std::string> WithoutPlaces(const std::string& findings) {
        std::vector<std::string> words;
        for (std::size_t at = findings.find('#'); at != std::string::npos;) {
            const std::size_t end = findings.find(" | ", at);
            words.push_back(findings.substr(at, end - at));
            at = end == std::string::npos ? end : findings.find('#', end);
        }
        return words;
    }
    /// Whether every finding existed before. A change may remove a finding, but not add one.
    static bool AddsNone(const std::vector<std::string>& before, const std::vector<std::string>& after) {
        auto next = before.begin();
        return std::ranges::all_of(after, [&](const std::string& finding) {
            next = std::find(next, before.end(), finding);
            return next != before.end() && (++next, true);
        });
    }
    Outcome ReadText(const std::string& text) {
        Outcome outcome;
        CKesContext context = Context();
        outcome.findings = WithoutPlaces(Read(text, *outcome.config, context, mProvider).findings);
        return outcome;
    }

    static TextChange ChangeAt(const TextLine& line) {
        TextChange change;
        change.place = line.place;
        change.psid = line.psid;
        change.indices = line.indices;
        change.key = MakeKeyString(line.psid, line.indices);
        change.value = VALUE;
        return change;
    }
    static std::string DeviceWord(std::int32_t number) {
        static constexpr std::pair<std::int32_t, const char*> DEVICES[] = {
            {0, "rom"}, {1, "otp"}, {2, "smem"}, {4, "mtp"}, {13, "cur_cfg"}, {14, "fw_cfg"}, {15, "eeprom"}};
        return std::ranges::find(DEVICES, number, [](const auto& entry) { return entry.first; })->second;
    }
    std::vector<TextPlace> Places() const {
        std::vector<TextPlace> places;
        for (const TextLine& line : mIndex.Lines()) {
            if (line.effect != TextLine::Effect::None &&
                std::ranges::find(places, line.place) == places.end())
                places.push_back(line.place);
        }
        return places;
    }
    static CSubsystemConfig* PlaceIn(const CChipConfig& config, const TextPlace& place) {
        for (const auto& [number, candidate] : config.Subsystems()) {
            const CKesContext& at = candidate->Place();
            if (TextPlace{at.SubsystemType(), at.Device(), at.Store()} == place) return candidate;
        }
        return nullptr;
    }
    bool IsThere(const TextChange& change) const {
        const CSubsystemConfig* place = PlaceIn(*mBefore.config, change.place);
        return place != nullptr && place->Find(change.psid, change.indices) != nullptr;
    }

    /// The model after the change, made on the model itself.
    Outcome Wanted(const TextChange& change) {
        Outcome wanted = ReadText(mIndex.Text());
        CChipConfig& config = *wanted.config;
        CSubsystemConfig* place = PlaceIn(config, change.place);
        if (change.isRemoval) {
            place->RemoveElement(change.psid, &change.indices);
        } else {
            // The same value, read in the same kind of place, in a separate text.
            std::string text = "subsystem=";
            text += SUBSYSTEM_NAMES[static_cast<std::size_t>(change.place.subsystem)];
            text += "\ndevice=" + DeviceWord(change.place.device);
            text += "\nstore=" + std::to_string(change.place.store) + "\n" + change.key + "=" + change.value;
            CKesContext fresh = Context();
            Read(text, config, fresh, mProvider);
        }
        return wanted;
    }

    void CheckChange(const char* what, const TextChange& change, const TextRange& touched) {
        ++tried;
        const std::string edited = EditText(mIndex, {change});
        const Outcome wanted = Wanted(change);
        const Outcome actual = ReadText(edited);
        if (actual.config->FirstDifference(*wanted.config) || wanted.config->FirstDifference(*actual.config))
            mFault(what, edited, Dump(*wanted.config), Dump(*actual.config));
        if (!AddsNone(mBefore.findings, actual.findings)) mFault(what, edited, "no other findings", {});
        if (change.isRemoval || touched.IsEmpty()) return;
        // Only the last value of the key has changed, to the requested one.
        const std::string& text = mIndex.Text();
        const std::size_t start =
            static_cast<std::size_t>(std::ranges::mismatch(text, edited).in1 - text.begin());
        const std::size_t sameEnd = static_cast<std::size_t>(
            std::mismatch(text.rbegin(), text.rend() - static_cast<std::ptrdiff_t>(start), edited.rbegin(),
                          edited.rend() - static_cast<std::ptrdiff_t>(std::min(start, edited.size())))
                .first -
            text.rbegin());
        for (const TextLine& line : mIndex.Lines()) {
            if (line.value.IsEmpty() || line.place != change.place || line.psid != change.psid ||
                line.indices != change.indices)
                continue;
            if (start >= line.value.begin && text.size() - sameEnd <= line.value.end) return;
        }
        // A key that a later line removes gets a new line.
        if (start + sameEnd < text.size()) mFault("bytes outside a value have changed", edited, text, {});
    }

    /// Checks that ranges are nested, lie within the text, and contain what they describe.
    void CheckIndex() {
        std::size_t before = 0;
        for (const TextLine& line : mIndex.Lines()) {
            const bool ordered = before <= line.all.begin && line.all.begin <= line.all.end &&
                                 line.all.end <= mIndex.Text().size();
            const bool isKey = line.effect != TextLine::Effect::None;
            const bool nested =
                !isKey || (line.all.begin <= line.key.begin && line.key.begin < line.key.end &&
                           line.key.end < line.value.begin && line.value.begin <= line.value.end &&
                           line.value.end <= line.all.end);
            if (!ordered || !nested) mFault("ranges of the index", mIndex.Text(), {}, {});
            before = line.all.end;
        }
    }

    IMetadataProvider& mProvider;
    std::string mChip;
    Fault mFault;
    CTextIndex mIndex;
    Outcome mBefore;
};

}  // namespace KesTest
