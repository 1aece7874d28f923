// A plug-in with the name KES_RECORDING that appends every call to the file named by the environment variable
// KES_RECORDING_LOG. Words in its connection, or in its stream, control it: "null", no object is created;
// "fail", reading fails; "fail-second", only the second read fails; "error", an error is stored; "stores",
// stores are reported.

#include "model/CIndexedElement.h"
#include "model/CKesContext.h"
#include "model/CStoreInfo.h"
#include "model/IConfigReaderElementObserver.h"
#include "model/IConfigReaderObserver.h"
#include "model/Payloads.h"
#include "plugins/kit/KesPlugin.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

using namespace VemoKesConfigTools;

constexpr std::uint32_t MAX_ACL_LINKS = 0x1005;

void Log(const std::string& line) {
    std::ofstream(std::getenv("KES_RECORDING_LOG"), std::ios::app) << line << '\n';
}

std::string TagsOf(const IConfigContext& context) {
    std::string text;
    for (const std::string_view tag : {STR_CHIP, STR_FILE_TYPE, STR_SUBSYSTEM_TYPE, STR_DEVICE, STR_FILE_MODE,
                                       STR_INSERT_MODE, STR_STORESET_FILTER, STR_EEPROM_SIZE_EXP,
                                       STR_EEPROM_I2C_MASK, STR_RESET_DEVICE_AFTER, STR_INPUT_FILE}) {
        if (const std::string value = context.GetTag(tag); !value.empty()) {
            text.append(" ").append(tag).append("=").append(value);
        }
    }
    return text;
}

void StoreError() {
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "Recording", false)
        .SetErrorMsg(0, "the device says no");
}

class Recorder final : public IConfigReader, public IConfigWriter, public IStoreManager {
public:
    Recorder(std::string told, std::iostream* stream) : mTold(std::move(told)), mpStream(stream) {}
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder() override {
        Log("delete");
        ClearStoreList(mStores);
    }

    void SetObserver(IConfigReaderObserver* observer) override {
        mpObserver = observer;
        Log("observer");
    }
    void SetElementObserver(IConfigReaderElementObserver* observer) override { mpElements = observer; }
    void SetMetadataProvider(IMetadataProvider* provider) override {
        Log(provider == nullptr ? "no provider" : "provider");
    }
    /// Returns one key, whose value is the length of the stream or, without a stream, the number of this
    /// read.
    bool Read(IConfigContext& context) override {
        if (mpStream != nullptr) mTold = (std::ostringstream() << mpStream->rdbuf()).str();
        Log("read" + TagsOf(context) + (mpStream == nullptr ? "" : " '" + mTold + "'"));
        ++mReadings;
        if (Told("error")) StoreError();
        if (Told("fail") && !(Told("fail-second") && mReadings == 1)) return false;
        if (Told("stores")) ReportStores();
        mpObserver->OnReadStarted(*this, context);
        auto& place = dynamic_cast<CKesContext&>(context);
        place.SetSubsystemType(1);
        place.SetDevice(IStoreManager::DEVICE_SMEM);
        place.SetStore(1);
        mpObserver->OnSubsystemFound(*this, context);
        auto* payload =
            new CUint8Payload(static_cast<std::uint8_t>(mpStream == nullptr ? mReadings : mTold.size()));
        mpElements->OnElementFound(new CIndexedElement(MAX_ACL_LINKS, "", {}, {payload}, false), context);
        mpObserver->OnReadEnded(*this, context);
        return true;
    }

    void Begin(IConfigContext& context) override { Log("begin" + TagsOf(context)); }
    void End(IConfigContext& /*context*/) override {
        Log("end");
        if (Told("error")) StoreError();
    }
    void BeginSubsystem(IConfigContext& /*context*/) override {}
    void EndSubsystem(IConfigContext& /*context*/) override {}
    void BeginElement(IConfigContext& /*context*/) override {}
    void EndElement(IConfigContext& /*context*/) override {}
    void WriteUid(std::uint32_t psid, IConfigContext& /*context*/) override {
        Log("key " + std::to_string(psid));
    }
    void WriteHeaderInfo(const std::string& /*name*/, const void* /*value*/, std::uint32_t /*size*/,
                         IConfigContext& /*context*/) override {}
    void WritePayload(IPayload& /*payload*/, IConfigContext& /*context*/) override {}

    void CreateStore(CStoreInfo& store, IConfigContext& context) override {
        std::ostringstream line;
        line << "create device " << store.DeviceId() << " store " << store.StoreId() << " size "
             << store.StoreSize() << " application " << store.LinkedStoreId()
             << (store.Paired() ? " paired" : "");
        Log(line.str() + TagsOf(context));
        if (Told("error")) StoreError();
    }
    void RefreshStoreInfo(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& /*context*/) override { return mStores; }

private:
    bool Told(const char* word) const { return mTold.find(word) != std::string::npos; }
    void ReportStores() {
        ClearStoreList(mStores);
        mStores.push_back(new CStoreInfo(IStoreManager::DEVICE_OTP, 3, 256, 100, 0, 1, false));
        mStores.push_back(new CStoreInfo(IStoreManager::DEVICE_SMEM, 1, 4096, -1, 7, 2, true));
    }

    std::string mTold;
    std::iostream* mpStream;
    std::list<CStoreInfo*> mStores;
    IConfigReaderObserver* mpObserver = nullptr;
    IConfigReaderElementObserver* mpElements = nullptr;
    std::size_t mReadings = 0;
};

/// The argument is a stream for the plug-in that uses streams; for others a flag, or null.
template <typename Interface>
Interface* Create(const char* what, const char* connection, void* argument) {
    const std::string told = connection;
    const bool streamed = std::string_view(KES_RECORDING) == "Packint" && argument != nullptr;
    if (!streamed) {
        const char* const flag = argument == nullptr             ? "null"
                                 : *static_cast<bool*>(argument) ? "true"
                                                                 : "false";
        Log(std::string(what) + " " KES_RECORDING " '" + told + "' " + flag);
    }
    if (told == "null" || (told.empty() && !streamed)) return nullptr;
    return KesPluginCreate<Interface>(
        [&] { return new Recorder(told, streamed ? static_cast<std::iostream*>(argument) : nullptr); });
}

IConfigReader* CreateReader(const char* connection, void* argument) {
    return Create<IConfigReader>("reader", connection, argument);
}
IConfigWriter* CreateWriter(const char* connection, void* argument) {
    return Create<IConfigWriter>("writer", connection, argument);
}
IStoreManager* CreateStoreManager(const char* connection, void* argument) {
    return Create<IStoreManager>("manager", connection, argument);
}

}  // namespace

KES_PLUGIN_DESCRIBE(KES_RECORDING, CreateReader, CreateWriter, CreateStoreManager, nullptr)
