#include "plugins/binary/CBinaryWriter.h"

#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/CNullMetadata.h"
#include "model/IMetadataProvider.h"
#include "model/IPayload.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/ValueCodec.h"

#include <cstring>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr const char* FUNCTION = "CBinaryWriter::Write";

/// The context as the one that holds a place. Null, and an error stored, when it is another.
CKesContext* PlaceOf(IConfigContext& context) {
    auto* place = dynamic_cast<CKesContext*>(&context);
    if (place == nullptr) Report(FUNCTION, Refusal(STR_INVALID_CONTEXT, context.Name()), {});
    return place;
}

}  // namespace

void CBinaryWriter::Begin(IConfigContext& /*context*/) {
    mPlaces.clear();
    mFailed = false;
}

void CBinaryWriter::End(IConfigContext& context) {
    CKesContext* kesContext = PlaceOf(context);
    if (mFailed || kesContext == nullptr) return;
    std::string subject;
    Reporting(FUNCTION, subject, [&] { Save(std::exchange(mPlaces, {}), *kesContext, subject); });
}

void CBinaryWriter::BeginSubsystem(IConfigContext& context) {
    const CKesContext* place = PlaceOf(context);
    mFailed = mFailed || place == nullptr;
    if (mFailed) return;
    mKeysOfPlace.clear();
    const auto order = static_cast<std::uint16_t>(place->Order() < 0 ? 0 : place->Order());
    mPlaces.push_back(
        {{place->SubsystemType(), place->Device(), place->Store(), place->LayerNumber(), order}, 0, {}});
}

void CBinaryWriter::EndSubsystem(IConfigContext& /*context*/) {}

void CBinaryWriter::BeginElement(IConfigContext& /*context*/) {
    mIndices.clear();
    mPayloads.clear();
}

void CBinaryWriter::WriteUid(std::uint32_t psid, IConfigContext& /*context*/) { mPsid = psid; }

void CBinaryWriter::WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t /*size*/,
                                    IConfigContext& /*context*/) {
    if (name != STR_HEADER_INDEX) return;
    std::int32_t index = 0;
    std::memcpy(&index, value, sizeof index);
    mIndices.push_back(static_cast<std::uint32_t>(index));
}

void CBinaryWriter::WritePayload(IPayload& payload, IConfigContext& /*context*/) {
    mPayloads.push_back(&payload);
}

void CBinaryWriter::EndElement(IConfigContext& context) {
    if (mFailed || mPlaces.empty()) return;
    const IMetadata& metadata =
        mpProvider == nullptr ? CNullMetadata::Ref() : mpProvider->MetadataByPsid(mPsid, context, true);
    try {
        std::string values;
        ByteWriter bytes(values);
        AppendValues(bytes, mPayloads, metadata);
        const bool another = !mKeysOfPlace.insert(MakeKeyString(mPsid, mIndices)).second;
        AppendRecord(mPlaces.back(), mPsid, mIndices, values, another);
    } catch (const Refusal& refusal) {
        mFailed = true;
        Report(FUNCTION, refusal, Describe(mPlaces.back().place) + ": key " + MakeKeyString(mPsid, mIndices));
    }
}

}  // namespace VemoKesConfigTools
