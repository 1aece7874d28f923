#include "plugins/binary/ValueCodec.h"

#include "model/CStructField.h"
#include "model/IMetadata.h"
#include "model/IMetadataDetail.h"
#include "model/Payloads.h"
#include "model/ValueRules.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/ValueCheck.h"

#include <algorithm>
#include <limits>

namespace VemoKesConfigTools {

namespace {

// A value begins with a byte of these.
constexpr std::uint8_t TYPE_MASK = 0x0F;
constexpr std::uint8_t COMPOSITE = 0x10;
constexpr std::uint8_t RAW = 0x20;

/// Structs in structs; metadata of real chips has two or three.
constexpr int DEEPEST = 16;

using FieldList = IMetadataDetail::FieldList;

const FieldList* FieldsOf(const IMetadata* metadata) {
    const IMetadataDetail* detail = metadata == nullptr ? nullptr : metadata->Detail();
    return detail == nullptr ? nullptr : &detail->Fields();
}

/// Whether a value within a struct was given raw: it is not what its field asks for.
bool IsRawField(const IPayload& payload, const IMetadata& field) {
    const auto* composite = dynamic_cast<const CComplexPayload*>(&payload);
    if (composite == nullptr || composite->Metadata() != nullptr) return WasGivenRaw({&payload}, field);
    // An array has no metadata of its own, its items have.
    if (!field.IsArray() || composite->Type() != ArrayTypeOf(field)) return true;
    return WasGivenRaw({composite->GetFields().begin(), composite->GetFields().end()}, field);
}

template <typename T>
T Value(const IPayload& payload) {
    return *static_cast<const T*>(payload.RawData());
}

void AppendValue(ByteWriter& bytes, const IPayload& payload, bool raw);

void AppendComposite(ByteWriter& bytes, const CComplexPayload& composite, bool raw) {
    const std::vector<IPayload*>& items = composite.GetFields();
    // Within a raw value all is raw, and nothing needs a mark of its own.
    const FieldList* fields = raw ? nullptr : FieldsOf(composite.Metadata());
    const bool known = fields != nullptr && fields->size() == items.size();
    bytes.Number(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        AppendValue(bytes, *items[i], known && IsRawField(*items[i], *(*fields)[i]->Metadata()));
}

void AppendValue(ByteWriter& bytes, const IPayload& payload, bool raw) {
    const auto* composite = dynamic_cast<const CComplexPayload*>(&payload);
    const auto tag =
        static_cast<std::uint8_t>(payload.Type() | (composite != nullptr ? COMPOSITE : 0) | (raw ? RAW : 0));
    bytes.Fixed(tag);
    if (composite != nullptr) return AppendComposite(bytes, *composite, raw);
    switch (payload.Type()) {
        case PAYLOAD_TYPE_INT8:
            return bytes.Signed(Value<std::int8_t>(payload));
        case PAYLOAD_TYPE_INT16:
            return bytes.Signed(Value<std::int16_t>(payload));
        case PAYLOAD_TYPE_INT32:
            return bytes.Signed(Value<std::int32_t>(payload));
        case PAYLOAD_TYPE_INT64:
            return bytes.Signed(Value<std::int64_t>(payload));
        case PAYLOAD_TYPE_UINT8:
            return bytes.Number(Value<std::uint8_t>(payload));
        case PAYLOAD_TYPE_UINT16:
            return bytes.Number(Value<std::uint16_t>(payload));
        case PAYLOAD_TYPE_UINT32:
            return bytes.Number(Value<std::uint32_t>(payload));
        case PAYLOAD_TYPE_UINT64:
            return bytes.Number(Value<std::uint64_t>(payload));
        case PAYLOAD_TYPE_STRING:
            return bytes.Text(*static_cast<const std::string*>(payload.RawData()));
        case PAYLOAD_TYPE_ENUM:
            bytes.Signed(Value<std::int32_t>(payload));
            return bytes.Text(static_cast<const CEnumPayload&>(payload).GetName());
        default:
            throw Refusal(STR_ELEMENT_TYPE_UNK,
                          "a value of the type " + std::to_string(payload.Type()) + " cannot be written");
    }
}

/// Reads one tree. With metadata it is held against it on the way.
class ValueReader {
public:
    explicit ValueReader(ByteReader& bytes) : mBytes(bytes) {}

    /// `field` is null for the value of a key and for the items of an array.
    std::unique_ptr<IPayload> Read(const IMetadata* metadata, const CStructField* field) {
        const auto tag = mBytes.Fixed<std::uint8_t>();
        if ((tag & ~(TYPE_MASK | COMPOSITE | RAW)) != 0 || (tag & TYPE_MASK) > PAYLOAD_TYPE_ENUM) {
            throw Refusal(STR_PACKINT_ERROR, "there is no type of values " + std::to_string(tag));
        }
        const auto type = static_cast<PayloadTypeEnum>(tag & TYPE_MASK);
        if ((tag & RAW) != 0) {
            metadata = nullptr;
            mRaw = true;
        }
        if ((tag & COMPOSITE) != 0) return ReadComposite(type, metadata, field);
        std::unique_ptr<IPayload> payload = ReadLeaf(type);
        if (metadata != nullptr) CheckLeaf(*payload, *metadata, field);
        return payload;
    }
    /// Whether any of what was read was given raw.
    bool MetRaw() const { return mRaw; }

private:
    std::unique_ptr<IPayload> ReadComposite(PayloadTypeEnum type, const IMetadata* metadata,
                                            const CStructField* field) {
        if (mDepth == DEEPEST) throw Refusal(STR_PACKINT_ERROR, "a value is nested too deeply");
        ++mDepth;
        const std::size_t count = mBytes.Count(2);
        auto composite = std::make_unique<CComplexPayload>(type);
        if (metadata == nullptr) {
            for (std::size_t i = 0; i < count; ++i) composite->AddField(Read(nullptr, nullptr).release());
        } else if (field != nullptr && metadata->IsArray()) {
            CheckArray(type, count, *metadata);
            for (std::size_t i = 0; i < count; ++i) composite->AddField(Read(metadata, nullptr).release());
        } else {
            const FieldList& fields = CheckStruct(type, count, *metadata);
            composite->Use(*metadata);
            for (const CStructField* each : fields)
                composite->AddField(Read(each->Metadata(), each).release());
        }
        --mDepth;
        return composite;
    }

    template <typename Payload, typename T>
    std::unique_ptr<IPayload> Signed() {
        const std::int64_t value = mBytes.Signed();
        if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max())
            throw Refusal(STR_PACKINT_ERROR, "a number is too large for its type");
        return std::make_unique<Payload>(static_cast<T>(value));
    }
    template <typename Payload, typename T>
    std::unique_ptr<IPayload> Unsigned() {
        return std::make_unique<Payload>(
            static_cast<T>(mBytes.NumberUpTo(std::numeric_limits<T>::max(), "a number")));
    }

    std::unique_ptr<IPayload> ReadLeaf(PayloadTypeEnum type) {
        switch (type) {
            case PAYLOAD_TYPE_INT8:
                return Signed<CInt8Payload, std::int8_t>();
            case PAYLOAD_TYPE_INT16:
                return Signed<CInt16Payload, std::int16_t>();
            case PAYLOAD_TYPE_INT32:
                return Signed<CInt32Payload, std::int32_t>();
            case PAYLOAD_TYPE_INT64:
                return Signed<CInt64Payload, std::int64_t>();
            case PAYLOAD_TYPE_UINT8:
                return Unsigned<CUint8Payload, std::uint8_t>();
            case PAYLOAD_TYPE_UINT16:
                return Unsigned<CUint16Payload, std::uint16_t>();
            case PAYLOAD_TYPE_UINT32:
                return Unsigned<CUint32Payload, std::uint32_t>();
            case PAYLOAD_TYPE_UINT64:
                return Unsigned<CUint64Payload, std::uint64_t>();
            case PAYLOAD_TYPE_STRING:
                return std::make_unique<CStringPayload>(std::string(mBytes.Text()), true);
            case PAYLOAD_TYPE_ENUM: {
                const std::int32_t value = mBytes.Signed32("an enumerator");
                return std::make_unique<CEnumPayload>(std::string(mBytes.Text()), value);
            }
            default:
                throw Refusal(STR_PACKINT_ERROR, "a struct is no composite");
        }
    }

    ByteReader& mBytes;
    int mDepth = 0;
    bool mRaw = false;
};

/// Whether any of the values was given raw.
bool ReadAll(ByteReader& bytes, const IMetadata* metadata, PayloadList& payloads) {
    const std::size_t count = bytes.Count(2);
    payloads.Reserve(count);
    ValueReader reader(bytes);
    for (std::size_t i = 0; i < count; ++i) payloads.Add(reader.Read(metadata, nullptr));
    return reader.MetRaw();
}

}  // namespace

void AppendValues(ByteWriter& bytes, const std::vector<const IPayload*>& payloads,
                  const IMetadata& metadata) {
    // What was unknown when it was written may be known to the reader; it was never held against anything.
    const bool raw = !metadata.IsValid() || WasGivenRaw(payloads, metadata);
    bytes.Number(payloads.size());
    for (const IPayload* payload : payloads) AppendValue(bytes, *payload, raw);
}

PayloadList::~PayloadList() {
    for (const IPayload* payload : mPayloads) delete payload;
}

void PayloadList::Add(std::unique_ptr<IPayload> payload) {
    mPayloads.push_back(payload.get());
    static_cast<void>(payload.release());
}

PayloadList ReadValues(ByteReader& bytes) {
    PayloadList payloads;
    ReadAll(bytes, nullptr, payloads);
    return payloads;
}

PayloadList ReadValues(ByteReader& bytes, const IMetadata& metadata) {
    PayloadList payloads;
    const bool raw = ReadAll(bytes, &metadata, payloads);
    // A key may be there without a value.
    if (!raw && !payloads.Get().empty()) CheckCount(payloads.Get().size(), metadata);
    return payloads;
}

}  // namespace VemoKesConfigTools
