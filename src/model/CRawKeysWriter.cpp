#include "model/CRawKeysWriter.h"

#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/CStructField.h"
#include "model/IConfigContext.h"
#include "model/IMetadata.h"
#include "model/IMetadataDetail.h"
#include "model/IMetadataProvider.h"
#include "model/IMetadataUser.h"
#include "model/Payloads.h"
#include "model/PlaceWords.h"
#include "model/ValueRules.h"
#include "model/Words.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace VemoKesConfigTools {

namespace {

/// Whether a string of this key or field reads back in the form that the format names. A MAC address ends at
/// a blank only, so it must stand alone, and an empty one is nothing at all.
bool TakesItsForm(const IMetadata& metadata, const IPayload& payload, bool alone) {
    const std::string format = metadata.Format();
    return format == STR_UNICODE_STRING || (format == STR_MACADDR_STRING && alone && payload.Length() != 0);
}

std::unique_ptr<IPayload> Copy(const IPayload& payload);

template <typename Payload>
std::unique_ptr<IPayload> CopyAs(const IPayload& payload) {
    return std::make_unique<Payload>(static_cast<const Payload&>(payload));
}

/// A negative number of 8 bits that would come out as hexadecimal digits of 16 bits.
bool IsWrittenTooWide(const IPayload& payload) {
    if (payload.Type() != PAYLOAD_TYPE_INT8 || dynamic_cast<const CComplexPayload*>(&payload) != nullptr)
        return false;
    const IMetadata* metadata = static_cast<const CInt8Payload&>(payload).Metadata();
    if (metadata == nullptr || *static_cast<const std::int8_t*>(payload.RawData()) >= 0) return false;
    const std::string format = metadata->Format();
    return !format.empty() && format != STR_SIGNED_DECIMAL_STRING && format != STR_UNSIGNED_DECIMAL_STRING;
}

/// The same bits as an unsigned number, of which the digits are right.
std::unique_ptr<IPayload> AsUnsigned(const CInt8Payload& payload) {
    auto copy = std::make_unique<CUint8Payload>(*static_cast<const std::uint8_t*>(payload.RawData()));
    copy->Use(*payload.Metadata());
    return copy;
}

/// A string with the metadata of its key or field.
std::unique_ptr<IPayload> StringWith(const IPayload& payload, const IMetadata& metadata) {
    auto copy = std::make_unique<CStringPayload>(static_cast<const CStringPayload&>(payload));
    copy->Use(metadata);
    return copy;
}

std::unique_ptr<IPayload> CopyComposite(const CComplexPayload& composite) {
    auto copy = std::make_unique<CComplexPayload>(composite.Type());
    const IMetadata* metadata = composite.Metadata();
    if (metadata != nullptr) copy->Use(*metadata);
    const IMetadataDetail* detail = metadata == nullptr ? nullptr : metadata->Detail();
    const std::vector<IPayload*>& fields = composite.GetFields();
    const bool known = detail != nullptr && detail->Fields().size() == fields.size();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const IMetadata* field = known ? detail->Fields()[i]->Metadata() : nullptr;
        const bool formed =
            field != nullptr && IsString(*fields[i]) && TakesItsForm(*field, *fields[i], false);
        copy->AddField((formed ? StringWith(*fields[i], *field) : Copy(*fields[i])).release());
    }
    return copy;
}

std::unique_ptr<IPayload> Copy(const IPayload& payload) {
    if (const auto* composite = dynamic_cast<const CComplexPayload*>(&payload))
        return CopyComposite(*composite);
    switch (payload.Type()) {
        case PAYLOAD_TYPE_INT8:
            if (IsWrittenTooWide(payload)) return AsUnsigned(static_cast<const CInt8Payload&>(payload));
            return CopyAs<CInt8Payload>(payload);
        case PAYLOAD_TYPE_INT16:
            return CopyAs<CInt16Payload>(payload);
        case PAYLOAD_TYPE_INT32:
            return CopyAs<CInt32Payload>(payload);
        case PAYLOAD_TYPE_INT64:
            return CopyAs<CInt64Payload>(payload);
        case PAYLOAD_TYPE_UINT8:
            return CopyAs<CUint8Payload>(payload);
        case PAYLOAD_TYPE_UINT16:
            return CopyAs<CUint16Payload>(payload);
        case PAYLOAD_TYPE_UINT32:
            return CopyAs<CUint32Payload>(payload);
        case PAYLOAD_TYPE_UINT64:
            return CopyAs<CUint64Payload>(payload);
        case PAYLOAD_TYPE_ENUM:
            return CopyAs<CEnumPayload>(payload);
        default:
            return CopyAs<CStringPayload>(payload);
    }
}

/// Whether a copy may be needed that comes out in another form.
bool NeedsForm(const IPayload& payload) {
    const auto* composite = dynamic_cast<const CComplexPayload*>(&payload);
    if (composite == nullptr) return payload.Type() == PAYLOAD_TYPE_STRING || IsWrittenTooWide(payload);
    return std::ranges::any_of(composite->GetFields(),
                               [](const IPayload* field) { return NeedsForm(*field); });
}

/// Why a value cannot stand in the raw form; null when it can.
const char* WhyNotRaw(const IPayload& payload) {
    if (dynamic_cast<const CComplexPayload*>(&payload) != nullptr)
        return "has a raw value with braces, raw values are a list of numbers and octets";
    if (payload.Type() == PAYLOAD_TYPE_ENUM)
        return "has a raw value with a name, raw values are a list of numbers and octets";
    if (payload.Type() <= PAYLOAD_TYPE_INT64 && payload.ToString().starts_with('-'))
        return "has a raw value below 0, raw numbers have no sign";
    return nullptr;
}

}  // namespace

void CRawKeysWriter::BeginElement(IConfigContext& context) {
    mPayloads.clear();
    mIndices.clear();
    mWriter.BeginElement(context);
}

void CRawKeysWriter::WriteUid(std::uint32_t psid, IConfigContext& context) {
    mPsid = psid;
    mWriter.WriteUid(psid, context);
}

void CRawKeysWriter::WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                                     IConfigContext& context) {
    if (name == STR_HEADER_INDEX) std::memcpy(&mIndices.emplace_back(), value, sizeof(std::uint32_t));
    mWriter.WriteHeaderInfo(name, value, size, context);
}

void CRawKeysWriter::WritePayload(IPayload& payload, IConfigContext& /*context*/) {
    mPayloads.push_back(&payload);
}

void CRawKeysWriter::EndElement(IConfigContext& context) {
    const std::string before = context.GetTag(STR_RAW_MODE);
    const IMetadata& metadata = mProvider.MetadataByPsid(mPsid, context, true);
    const bool raw = !metadata.IsValid() || WasGivenRaw({mPayloads.begin(), mPayloads.end()}, metadata);
    CheckReadsBack(raw, context);
    if (raw) context.SetTag(STR_RAW_MODE, STR_TRUE);
    for (IPayload* payload : mPayloads) {
        std::unique_ptr<IPayload> formed;
        if (!raw) formed = InReadableForm(*payload, metadata);
        IPayload* const shown = formed ? formed.get() : payload;
        mWriter.WritePayload(*shown, context);
    }
    context.SetTag(STR_RAW_MODE, before);
    mWriter.EndElement(context);
}

void CRawKeysWriter::CheckReadsBack(bool raw, const IConfigContext& context) {
    if (mFault) return;
    const char* why = nullptr;
    // Indexes are written with a sign.
    if (std::ranges::any_of(mIndices, [](std::uint32_t index) { return std::cmp_greater(index, INT32_MAX); }))
        why = "has an index above 2147483647, which texts cannot name";
    for (const IPayload* payload : mPayloads) {
        if (why == nullptr && raw) why = WhyNotRaw(*payload);
    }
    if (why == nullptr) return;
    const auto* place = dynamic_cast<const CKesContext*>(&context);
    mFault = (place == nullptr ? std::string() : DescribePlace(*place) + ": ") + "key " +
             MakeKeyString(mPsid, mIndices) + " " + why + "; keep it in chunk files or remove it";
}

/// A copy that comes out in a form that reads back; null where the payload itself does.
std::unique_ptr<IPayload> CRawKeysWriter::InReadableForm(const IPayload& payload, const IMetadata& metadata) {
    if (!NeedsForm(payload)) return nullptr;
    if (!IsString(payload)) return Copy(payload);
    return TakesItsForm(metadata, payload, !metadata.IsArray()) ? StringWith(payload, metadata) : nullptr;
}

}  // namespace VemoKesConfigTools
