#include "plugins/binary/CBinaryReader.h"

#include "messages/CTheMsgHnd.h"
#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReaderElementObserver.h"
#include "model/IConfigReaderObserver.h"
#include "model/IMetadataProvider.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"

namespace VemoKesConfigTools {

bool CBinaryReader::Read(IConfigContext& context) {
    constexpr const char* FUNCTION = "CBinaryReader::Read";
    auto* kesContext = dynamic_cast<CKesContext*>(&context);
    if (kesContext == nullptr || mpObserver == nullptr || mpProvider == nullptr) {
        Report(FUNCTION, Refusal(STR_INVALID_CONTEXT, context.Name()), {});
        return false;
    }
    ClearStoreList(mStores);
    mpElementObserver = nullptr;
    mpObserver->OnReadStarted(*this, context);
    bool result = false;
    std::string subject;
    const std::uint64_t errorsBefore = CTheMsgHnd::ErrorsEver();
    const bool isWhole = Reporting(FUNCTION, subject, [&] {
        std::vector<DecodedPlace> places;
        for (const EncodedPlace& place : Collect(*kesContext, subject))
            places.push_back(DecodePlace(place, *mpProvider, *kesContext));
        // What a provider cannot look up looks like a key that it does not know.
        result = CTheMsgHnd::ErrorsEver() == errorsBefore;
        if (result) Deliver(places, *kesContext);
    });
    if (!isWhole) ClearStoreList(mStores);
    mpObserver->OnReadEnded(*this, context);
    return result;
}

void CBinaryReader::Deliver(std::vector<DecodedPlace>& places, CKesContext& context) {
    const std::string mode = context.GetTag(STR_INSERT_MODE);
    for (DecodedPlace& place : places) {
        SetPlace(context, place.place);
        mpObserver->OnSubsystemFound(*this, context);
        mpProvider->MetadataList(context, true);
        if (mpElementObserver == nullptr) continue;
        if (auto* config = dynamic_cast<CSubsystemConfig*>(mpElementObserver))
            config->Reserve(place.keys.size());
        for (DecodedPlace::Key& key : place.keys) {
            // The first of a key goes in as the caller wishes, the others of this place behind it.
            if (key.another) context.SetTag(STR_INSERT_MODE, STR_APPEND);
            mpElementObserver->OnElementFound(key.element.release(), context);
            if (key.another) context.SetTag(STR_INSERT_MODE, mode);
        }
    }
}

}  // namespace VemoKesConfigTools
