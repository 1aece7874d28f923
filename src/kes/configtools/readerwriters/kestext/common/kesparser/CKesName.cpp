#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesName.h"

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "model/CKesContext.h"
#include "model/IConfigReaderObserver.h"
#include "model/IMetadata.h"

namespace VemoKesConfigTools {

CParserError CKesName::Parse() {
    CParserError result = CName::Parse();
    if (!result.Ok() || mpSource->PeekChar() != '.') return result;

    // The count of indexes is asked for under the tags of the line before: those of this line come with
    // `Action`.
    CKesContext& context = *mpParseContext->mpConfigContext;
    const IMetadata& metadata = mKeyName.empty()
                                    ? mpParseContext->mpProvider->MetadataByPsid(mId, context, true)
                                    : mpParseContext->mpProvider->MetadataByName(mKeyName, context, true);
    std::uint32_t index = 0;
    for (result = ReadIndexValue(index); result.Ok(); result = ReadIndexValue(index)) {
        KESTEXT_TRACE(2, "CKesName::Parse", "index: %d", static_cast<int>(index));
        mIndices.push_back(index);
    }
    if (result.mCode == PE_END_OF_DATA) {
        const std::uint32_t expected = metadata.NumIndexes();
        result = PE_NONE;
        if (!metadata.IsValid()) {
            result = PE_UNKNOWN_NAME;
        } else if (expected != mIndices.size()) {
            result = {PE_WRONG_INDEX_COUNT,
                      "requires " + std::to_string(expected) + (expected == 1 ? " index" : " indices")};
        }
    }
    KESTEXT_TRACE(3, "CKesName::Parse", "retVal = %d", result.mCode);
    return result;
}

CParserError CKesName::Action() {
    const bool hasPrefix = mpParseContext->mPrefix.mSubsystem != -1;
    const CStoreAddress& place = hasPrefix ? mpParseContext->mPrefix : mpParseContext->mInfo;
    CKesContext& context = *mpParseContext->mpConfigContext;
    context.SetSubsystemType(place.mSubsystem);
    context.SetDevice(place.mDevice);
    context.SetStore(place.mStore);
    mpParseContext->ForgetName();
    mpParseContext->mpReader->Observer()->OnSubsystemFound(*mpParseContext->mpReader, context);
    mpParseContext->mpProvider->MetadataList(context, true);
    return mKeyName.empty() ? LookupName(mId, mKeyName) : LookupPSID(mKeyName, mId);
}

CParserError CKesName::LookupPSID(const std::string& name, std::uint32_t& id) {
    const IMetadata& metadata = mpParseContext->ByName(name);
    if (!metadata.IsValid()) return PE_UNKNOWN_NAME;
    const std::uint32_t psid = metadata.Psid();
    if (psid == 0) return PE_NO_KEY_NUMBER;
    id = psid;
    return PE_NONE;
}

CParserError CKesName::LookupName(std::uint32_t id, std::string& name) {
    const IMetadata& metadata =
        mpParseContext->mpProvider->MetadataByPsid(id, *mpParseContext->mpConfigContext, false);
    if (!metadata.IsValid()) return PE_UNKNOWN_NAME;
    name = metadata.Name();
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
