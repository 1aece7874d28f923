// Replaces the text format by a reader that returns keys without metadata records and without a layer, as a
// device does and a text cannot. It first reads the text as usual.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesWriter.h"
#include "model/CIndexedElement.h"
#include "model/CKesContext.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReaderObserver.h"
#include "model/Payloads.h"
#include "plugins/kit/KesPlugin.h"

#include <iostream>

namespace {

using namespace VemoKesConfigTools;

class BareReader final : public IConfigReader {
public:
    explicit BareReader(std::iostream* stream) : mText(stream) {}
    void SetObserver(IConfigReaderObserver* observer) override {
        mpObserver = observer;
        mText.SetObserver(observer);
    }
    void SetElementObserver(IConfigReaderElementObserver* observer) override { mpElements = observer; }
    void SetMetadataProvider(IMetadataProvider* provider) override { mText.SetMetadataProvider(provider); }
    bool Read(IConfigContext& context) override {
        const bool good = mText.Read(context);
        CKesContext place = static_cast<CKesContext&>(context);
        place.SetTag(STR_LAYER_NUMBER);
        mpObserver->OnSubsystemFound(*this, place);
        for (const std::uint32_t psid : {0x1005U, 0x80000001U}) {
            auto* payload = new CUint8Payload(std::uint8_t{99});
            mpElements->OnElementFound(new CIndexedElement(psid, "", {}, {payload}, false), place);
        }
        return good;
    }

private:
    CKesConfigReader mText;
    IConfigReaderObserver* mpObserver = nullptr;
    IConfigReaderElementObserver* mpElements = nullptr;
};

IConfigReader* CreateReader(const char* /*connection*/, void* argument) {
    return KesPluginCreate<IConfigReader>(
        [&] { return new BareReader(static_cast<std::iostream*>(argument)); });
}

IConfigWriter* CreateWriter(const char* /*connection*/, void* argument) {
    return KesPluginCreate<IConfigWriter>(
        [&] { return new CKesWriter(static_cast<std::iostream*>(argument), nullptr); });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KesText", CreateReader, CreateWriter, nullptr, nullptr)
