#include "plugins/image/PlaceMerge.h"

#include "model/CElement.h"
#include "model/Payloads.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/ValueCodec.h"

#include <algorithm>
#include <unordered_map>

namespace VemoKesConfigTools {

namespace {

using RecordsByKey = std::unordered_map<std::string_view, std::vector<const KeyRecord*>>;

RecordsByKey ByKey(const std::vector<KeyRecord>& records) {
    RecordsByKey byKey;
    for (const KeyRecord& record : records) byKey[record.key].push_back(&record);
    return byKey;
}

void Append(EncodedPlace& place, const KeyRecord& record) {
    place.records += record.all;
    ++place.keyCount;
}

EncodedPlace MergePlace(const EncodedPlace& held, const EncodedPlace& given) {
    EncodedPlace merged{held.place, 0, {}};
    // A given place without an order keeps that on the device.
    if (given.place.order != 0) merged.place.order = given.place.order;
    const std::vector<KeyRecord> givenRecords = SplitRecords(given);
    // `rest` has the given keys that are still to be written. A key that is held several times is replaced at
    // its first occurrence and omitted at the others.
    RecordsByKey rest = ByKey(givenRecords);
    const RecordsByKey replacing = rest;
    for (const KeyRecord& record : SplitRecords(held)) {
        if (!replacing.contains(record.key)) {
            Append(merged, record);
        } else if (const auto found = rest.find(record.key); found != rest.end()) {
            for (const KeyRecord* replacement : found->second) Append(merged, *replacement);
            rest.erase(found);
        }
    }
    for (const KeyRecord& record : givenRecords) {
        if (rest.contains(record.key)) Append(merged, record);
    }
    return merged;
}

std::string BytesOf(const IPayload& payload) {
    std::string bytes(payload.Length(), '\0');
    payload.WriteToMem(bytes.data(), payload.Length());
    return bytes;
}

/// In ascending order of severity: the result for several values is the maximum.
enum class Fit { SetsBits, ClearsBits, HasAnotherForm };

Fit FitOf(const IPayload& held, const IPayload& wanted) {
    const auto* heldFields = dynamic_cast<const CComplexPayload*>(&held);
    const auto* wantedFields = dynamic_cast<const CComplexPayload*>(&wanted);
    if (held.Type() != wanted.Type() || (heldFields == nullptr) != (wantedFields == nullptr))
        return Fit::HasAnotherForm;
    // Composites are compared by fields, so that the types of the fields are checked too.
    if (heldFields != nullptr) {
        const auto& fields = heldFields->GetFields();
        if (fields.size() != wantedFields->GetFields().size()) return Fit::HasAnotherForm;
        Fit worst = Fit::SetsBits;
        for (std::size_t i = 0; i < fields.size(); ++i)
            worst = std::max(worst, FitOf(*fields[i], *wantedFields->GetFields()[i]));
        return worst;
    }
    const std::string before = BytesOf(held);
    const std::string after = BytesOf(wanted);
    if (before.size() != after.size()) return Fit::HasAnotherForm;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if ((static_cast<unsigned char>(before[i]) & ~static_cast<unsigned>(after[i]) & 0xFFU) != 0)
            return Fit::ClearsBits;
    }
    return Fit::SetsBits;
}

Fit FitOf(const KeyRecord& held, const KeyRecord& wanted) {
    const PayloadList heldValues = DecodePayloads(held.payloads);
    const PayloadList wantedValues = DecodePayloads(wanted.payloads);
    const std::vector<IPayload*>& before = heldValues.Get();
    const std::vector<IPayload*>& after = wantedValues.Get();
    if (before.size() != after.size()) return Fit::HasAnotherForm;
    Fit worst = Fit::SetsBits;
    for (std::size_t i = 0; i < before.size(); ++i) worst = std::max(worst, FitOf(*before[i], *after[i]));
    return worst;
}

std::string NameOfKey(const KeyRecord& record) {
    ByteReader bytes(record.key);
    const auto psid = static_cast<std::uint32_t>(bytes.Number());
    std::vector<std::uint32_t> indices;
    while (bytes.Left() != 0) indices.push_back(static_cast<std::uint32_t>(bytes.Number()));
    return "key " + MakeKeyString(psid, indices);
}

void CheckPlace(const EncodedPlace& held, const EncodedPlace& wanted, const std::string& store) {
    const std::vector<KeyRecord> wantedRecords = SplitRecords(wanted);
    const RecordsByKey wantedByKey = ByKey(wantedRecords);
    std::unordered_map<std::string_view, std::size_t> seen;
    for (const KeyRecord& record : SplitRecords(held)) {
        const auto refusal = [&](const char* what) {
            return Refusal(STR_OPERATION_INVALID,
                           "one-time-programmable " + store + ": " + NameOfKey(record) + what);
        };
        // A place may have a key several times: the n-th one takes the cells of the n-th one before.
        const std::size_t nth = seen[record.key]++;
        const auto found = wantedByKey.find(record.key);
        if (found == wantedByKey.end() || found->second.size() <= nth) throw refusal(" would be removed");
        const Fit fit = FitOf(record, *found->second[nth]);
        if (fit == Fit::ClearsBits) throw refusal(" would have bits cleared");
        if (fit == Fit::HasAnotherForm) throw refusal(" would get a value of a different type or size");
    }
}

}  // namespace

bool SamePlace(const BinaryPlace& left, const BinaryPlace& right) {
    BinaryPlace moved = left;
    moved.order = right.order;
    return moved == right;
}

std::vector<EncodedPlace> MergePlaces(std::vector<EncodedPlace> held,
                                      const std::vector<EncodedPlace>& given) {
    for (const EncodedPlace& place : given) {
        const auto same = std::ranges::find_if(
            held, [&](const EncodedPlace& other) { return SamePlace(other.place, place.place); });
        if (same == held.end()) {
            held.push_back(place);
        } else {
            *same = MergePlace(*same, place);
        }
    }
    return held;
}

void CheckOnlySetsBits(const std::vector<EncodedPlace>& held, const std::vector<EncodedPlace>& wanted,
                       const std::string& store) {
    for (const EncodedPlace& place : held) {
        const auto same = std::ranges::find_if(
            wanted, [&](const EncodedPlace& other) { return SamePlace(other.place, place.place); });
        CheckPlace(place, same == wanted.end() ? EncodedPlace{place.place, 0, {}} : *same, store);
    }
}

}  // namespace VemoKesConfigTools
