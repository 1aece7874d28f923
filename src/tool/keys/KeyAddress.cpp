#include "tool/keys/KeyAddress.h"

#include "tool/keys/DeviceWords.h"
#include "tool/keys/KeyText.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <charconv>

namespace kes::tool {

namespace {

/// A number of which nothing is left over.
template <typename T>
bool ParseWhole(std::string_view text, T& number, int base = 10) {
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && next == end;
}

std::int32_t DeviceNumber(const std::string& word) {
    std::vector<std::string> words;
    std::string list;
    for (const auto& [name, number] : DEVICE_NAMES) {
        if (VemoKesConfigTools::EqualsIgnoringCase(name, word)) return number;
        words.emplace_back(name);
        list += (list.empty() ? "" : ", ") + words.back();
    }
    const std::string near = DidYouMean(word, words);
    throw Failure(EXIT_USAGE, "there is no device \"" + word + "\"" + (near.empty() ? "" : ", " + near) +
                                  "\nthe devices are: " + list);
}

std::int32_t StoreNumber(const std::string& text) {
    constexpr std::uint32_t LAST_STORE = 65535;
    const std::optional<std::uint32_t> number = ParseKeyNumber(text);
    if (number && *number <= LAST_STORE) return static_cast<std::int32_t>(*number);
    throw Failure(EXIT_USAGE, "\"" + text + "\" is no store: a number from 0 to 65535");
}

}  // namespace

std::optional<std::uint32_t> ParseKeyNumber(std::string_view text) {
    std::uint32_t number = 0;
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (!ParseWhole(hex ? text.substr(2) : text, number, hex ? 16 : 10)) return std::nullopt;
    return number;
}

KeyAddress::KeyAddress(const std::string& word) : text(word) {
    const std::string_view all = text;
    const std::size_t dot = std::min(all.find('.'), all.size());
    const std::string_view first = all.substr(0, dot);
    number = ParseKeyNumber(first);
    if (!number) name = first;
    const bool isName =
        std::ranges::all_of(name, [](unsigned char c) { return c == '_' || std::isalnum(c); });
    bool good =
        !first.empty() && isName && (number || std::isdigit(static_cast<unsigned char>(first[0])) == 0);
    for (std::size_t at = dot; good && at < all.size();) {
        const std::size_t end = std::min(all.find('.', at + 1), all.size());
        good = ParseWhole(all.substr(at + 1, end - at - 1), indexes.emplace_back()) && indexes.back() >= 0;
        at = end;
    }
    if (good) return;
    throw Failure(EXIT_USAGE,
                  "\"" + text +
                      "\" is no key: a key is a name or a number, with \".\" and a number for each "
                      "index, as in tx_power_limit.0.1");
}

PlaceFilter::PlaceFilter(Session& session, const api::Chip& chip, const PlaceOptions& options)
    : mSubsystems(SubsystemsNamed(session, chip, options.subsystem)) {
    if (!options.device.empty()) mDevice = DeviceNumber(options.device);
    if (!options.store.empty()) mStore = StoreNumber(options.store);
}

bool PlaceFilter::Takes(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store) const {
    return std::ranges::any_of(mSubsystems, [&](const auto& one) { return one->Type() == subsystem; }) &&
           device == mDevice.value_or(device) && store == mStore.value_or(store);
}

std::vector<KeyCandidate> FindCandidates(Session& session, const api::Chip& chip, const PlaceFilter& filter,
                                         const KeyAddress& address) {
    std::vector<KeyCandidate> candidates;
    for (const auto& subsystem : filter.Subsystems()) {
        const std::shared_ptr<api::Metadata> key =
            session.FindKey(chip, *subsystem, address.name, address.number);
        if (key) {
            candidates.push_back({subsystem, key->Psid(), Text(key->Name()), key});
        } else if (address.number) {
            candidates.push_back({subsystem, static_cast<std::int32_t>(*address.number), {}, nullptr});
        }
    }
    if (!candidates.empty()) return candidates;
    const std::string near = DidYouMean(address.name, session.KeyNames(chip));
    throw Failure(EXIT_FINDINGS,
                  Text(chip.SystemVersionLabel()) + " has no key \"" + address.name + "\"" +
                      (filter.Subsystems().size() == 1 ? " in " + Text(filter.Subsystems().front()->Name())
                                                       : std::string()) +
                      (near.empty() ? "; \"kes keys\" lists the keys" : ", " + near));
}

void CheckIndexes(const KeyCandidate& candidate, const KeyAddress& address) {
    if (!candidate.record) return;
    std::size_t number = 0;
    for (const auto& index : candidate.record->TableIndexes()) {
        const bool isGiven = number < address.indexes.size();
        const auto value = isGiven ? static_cast<std::uint32_t>(address.indexes[number++]) : 0;
        if (isGiven && value >= index->Min() && value <= index->Max()) continue;
        // A wrong number of them is refused by the text format, but none at all is not.
        if (!isGiven && !address.indexes.empty()) return;
        std::string text = "\"" + address.text + "\" is no key of the table ";
        text.append(candidate.name).append(IndexSuffix(*candidate.record)).append(": ");
        text.append(Text(index->Name())).append(" is ").append(std::to_string(index->Min()));
        throw Failure(EXIT_FINDINGS, text.append(" to ").append(std::to_string(index->Max())));
    }
}

std::vector<std::shared_ptr<api::KeyValue>> FindValues(api::FrameworkFacade& facade,
                                                       const std::vector<KeyCandidate>& candidates,
                                                       const PlaceFilter& filter, const KeyAddress& address) {
    std::vector<std::shared_ptr<api::KeyValue>> values;
    for (const KeyCandidate& candidate : candidates) {
        for (const auto& value : facade.GetValues(candidate.subsystem, candidate.psid, address.IndexList())) {
            if (filter.Takes(*value)) values.push_back(value);
        }
    }
    return values;
}

std::string PlaceText(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store) {
    return Text(api::Subsystem::NameOf(subsystem)) + " " + DeviceName(device) + " " + std::to_string(store);
}

std::string PlaceText(const api::KeyValue& key) {
    return PlaceText(key.SubsystemType(), key.DeviceId(), key.StoreId());
}

std::string KeyText(const api::KeyValue& key) {
    std::string text =
        key.Name().IsNull() ? std::to_string(static_cast<std::uint32_t>(key.Psid())) : Text(key.Name());
    for (const std::int32_t index : key.Indexes())
        text.append(1, '.').append(std::to_string(static_cast<std::uint32_t>(index)));
    return text;
}

void FailNotUnique(const KeyAddress& address, const std::vector<std::shared_ptr<api::KeyValue>>& values) {
    std::string list;
    for (const auto& value : values) list += "\n  " + PlaceText(*value) + ": " + value->ValueBytes();
    throw Failure(EXIT_USAGE, address.text + " is in " + std::to_string(values.size()) +
                                  " places; choose one with --subsystem, --device and --store:" + list);
}

}  // namespace kes::tool
