#include "plugins/binary/Places.h"

#include "model/CIndexedElement.h"
#include "model/CKesContext.h"
#include "model/CNullMetadata.h"
#include "model/IMetadata.h"
#include "model/IMetadataProvider.h"
#include "model/IPayload.h"
#include "model/SubsystemNames.h"
#include "model/Words.h"
#include "plugins/binary/DeviceWords.h"
#include "plugins/binary/Refusal.h"

#include <limits>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr std::uint64_t MOST_16 = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint64_t MOST_32 = std::numeric_limits<std::uint32_t>::max();
/// Number of indexes with the flag, number and payload count: a record has three bytes at least.
constexpr std::size_t SMALLEST_RECORD = 3;

struct RecordHead {
    std::uint32_t psid = 0;
    std::vector<std::uint32_t> indices;
    bool another = false;
    std::string_view key;
};

/// head ::= number-of-indexes * 2 + another, psid, index...
RecordHead ReadHead(ByteReader& bytes, std::string_view all) {
    RecordHead head;
    const std::uint64_t counts = bytes.NumberUpTo(MOST_32, "a number of indexes");
    head.another = (counts & 1U) != 0;
    const std::size_t begin = bytes.Offset();
    head.psid = static_cast<std::uint32_t>(bytes.NumberUpTo(MOST_32, "a key number"));
    if (head.psid == 0) throw Refusal(STR_PACKINT_ERROR, "there is no key of the number 0");
    if (counts / 2 > bytes.Left())
        throw Refusal(STR_PACKINT_ERROR, "a number of indexes ends behind the data");
    for (std::uint64_t i = 0; i < counts / 2; ++i)
        head.indices.push_back(static_cast<std::uint32_t>(bytes.NumberUpTo(MOST_32, "an index")));
    head.key = all.substr(begin, bytes.Offset() - begin);
    return head;
}

std::string NameOf(const RecordHead& head, const IMetadata& metadata) {
    const std::string number = MakeKeyString(head.psid, head.indices);
    return metadata.IsValid() ? metadata.Name() + " (" + number + ")" : "key " + number;
}

std::unique_ptr<CElement> MakeElement(RecordHead& head, PayloadList payloads, const IMetadata& metadata) {
    auto element =
        std::make_unique<CIndexedElement>(head.psid, std::string(), head.indices, payloads.Release(), false);
    element->Use(metadata.IsValid() ? metadata : CNullMetadata::Ref());
    return element;
}

std::unique_ptr<CElement> DecodeKey(RecordHead& head, ByteReader& bytes, const IMetadata& metadata) {
    try {
        if (!metadata.IsValid()) return MakeElement(head, ReadValues(bytes), metadata);
        const std::uint32_t indexes = metadata.NumIndexes();
        if (!head.indices.empty() && head.indices.size() != indexes) {
            throw Refusal(STR_PACKINT_ERROR,
                          "requires " + std::to_string(indexes) + (indexes == 1 ? " index" : " indices"));
        }
        return MakeElement(head, ReadValues(bytes, metadata), metadata);
    } catch (const Refusal& refusal) {
        throw Refusal(refusal.Text(), NameOf(head, metadata) + ": " + refusal.what());
    }
}

}  // namespace

void AppendPlace(std::string& bytes, const EncodedPlace& encoded) {
    ByteWriter writer(bytes);
    const BinaryPlace& place = encoded.place;
    writer.Signed(place.subsystem);
    writer.Signed(place.device);
    writer.Signed(place.store);
    // One more than the layer; 0 says that there is none.
    writer.Number(place.layer ? static_cast<std::uint64_t>(static_cast<std::uint32_t>(*place.layer)) + 1 : 0);
    writer.Number(place.order);
    writer.Number(encoded.keyCount);
    writer.Text(encoded.records);
}

EncodedPlace ReadPlace(ByteReader& bytes) {
    EncodedPlace encoded;
    BinaryPlace& place = encoded.place;
    place.subsystem = bytes.Signed32("a subsystem");
    place.device = bytes.Signed32("a device");
    place.store = bytes.Signed32("a store");
    if (const std::uint64_t layer = bytes.NumberUpTo(MOST_32 + 1, "a layer"); layer != 0)
        place.layer = static_cast<std::int32_t>(static_cast<std::uint32_t>(layer - 1));
    place.order = static_cast<std::uint16_t>(bytes.NumberUpTo(MOST_16, "an order"));
    encoded.keyCount = static_cast<std::uint32_t>(bytes.NumberUpTo(MOST_32, "a number of keys"));
    encoded.records = bytes.Text();
    if (encoded.keyCount > encoded.records.size() / SMALLEST_RECORD)
        throw Refusal(STR_PACKINT_ERROR, Describe(place) + ": the number of keys is too large");
    return encoded;
}

std::vector<KeyRecord> SplitRecords(const EncodedPlace& place) {
    std::vector<KeyRecord> records;
    records.reserve(place.keyCount);
    const std::string_view all = place.records;
    ByteReader bytes(all);
    for (std::uint32_t i = 0; i < place.keyCount; ++i) {
        const std::size_t begin = bytes.Offset();
        const RecordHead head = ReadHead(bytes, all);
        const std::size_t values = bytes.Offset();
        ReadValues(bytes);
        records.push_back({all.substr(begin, bytes.Offset() - begin), head.key,
                           all.substr(values, bytes.Offset() - values), head.another});
    }
    bytes.ExpectEnd();
    return records;
}

PayloadList DecodePayloads(std::string_view payloads) {
    ByteReader bytes(payloads);
    return ReadValues(bytes);
}

void AppendRecord(EncodedPlace& place, std::uint32_t psid, std::span<const std::uint32_t> indices,
                  std::string_view payloads, bool another) {
    ByteWriter writer(place.records);
    writer.Number(indices.size() * 2 + (another ? 1 : 0));
    writer.Number(psid);
    for (const std::uint32_t index : indices) writer.Number(index);
    writer.Raw(payloads);
    ++place.keyCount;
}

DecodedPlace DecodePlace(const EncodedPlace& encoded, IMetadataProvider& provider, CKesContext& context) {
    SetPlace(context, encoded.place);
    provider.MetadataList(context, true);
    DecodedPlace decoded{encoded.place, {}};
    decoded.keys.reserve(encoded.keyCount);
    ByteReader bytes(encoded.records);
    for (std::uint32_t i = 0; i < encoded.keyCount; ++i) {
        RecordHead head = ReadHead(bytes, encoded.records);
        const IMetadata& metadata = provider.MetadataByPsid(head.psid, context, true);
        DecodedPlace::Key& key = decoded.keys.emplace_back();
        key.element = DecodeKey(head, bytes, metadata);
        key.another = head.another;
    }
    bytes.ExpectEnd();
    return decoded;
}

void SetPlace(CKesContext& context, const BinaryPlace& place) {
    context.SetSubsystemType(place.subsystem);
    context.SetDevice(place.device);
    context.SetStore(place.store);
    context.SetOrder(place.order);
    if (place.layer) {
        context.SetLayerNumber(*place.layer);
    } else {
        context.SetTag(STR_LAYER_NUMBER);
    }
}

std::string Describe(const BinaryPlace& place) {
    return SubsystemWord(place.subsystem) + ", " + DeviceWord(place.device) + ", store " +
           std::to_string(place.store);
}

}  // namespace VemoKesConfigTools
