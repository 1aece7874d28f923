// A skeleton to start a plug-in from: a reader with the name "KeyList", for texts of one key per line.
//
//     # subsystem type, device, store, key number, value
//     5 15 1 20498 300
//
// It takes integer keys without indexes only.

#include "messages/CTheMsgHnd.h"
#include "model/CIndexedElement.h"
#include "model/IConfigContext.h"
#include "model/IConfigReaderElementObserver.h"
#include "model/IConfigReaderObserver.h"
#include "model/IMetadata.h"
#include "model/IMetadataProvider.h"
#include "model/MetadataTypes.h"
#include "model/Payloads.h"
#include "model/Words.h"
#include "plugins/kit/KesPlugin.h"

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

namespace {

using namespace VemoKesConfigTools;

/// Null when the value does not fit the type.
template <typename Payload>
IPayload* Make(std::int64_t value, const IMetadata& metadata) {
    using Number = decltype(std::declval<Payload&>().GetValue());
    if (!std::in_range<Number>(value)) return nullptr;
    auto payload = std::make_unique<Payload>(static_cast<Number>(value));
    payload->Use(metadata);
    return payload.release();
}

// The class of a payload follows from the type that the metadata gives the key.
constexpr struct {
    std::string_view type;
    IPayload* (*make)(std::int64_t, const IMetadata&);
} PAYLOADS[] = {
    {STR_UINT8, Make<CUint8Payload>},   {STR_UINT16, Make<CUint16Payload>},
    {STR_UINT32, Make<CUint32Payload>}, {STR_UINT64, Make<CUint64Payload>},
    {STR_INT8, Make<CInt8Payload>},     {STR_INT16, Make<CInt16Payload>},
    {STR_INT32, Make<CInt32Payload>},   {STR_INT64, Make<CInt64Payload>},
    {STR_INTEGER, Make<CInt64Payload>},
};

struct Place {
    std::int64_t subsystem = 0;
    std::int64_t device = 0;
    std::int64_t store = 0;
    bool operator==(const Place&) const = default;
};

class CKeyListReader final : public IConfigReader {
public:
    explicit CKeyListReader(const std::string& fileName) : mFileName(fileName) {}
    explicit CKeyListReader(std::istream* stream) : mpStream(stream) {}

    void SetObserver(IConfigReaderObserver* observer) override { mpObserver = observer; }
    void SetElementObserver(IConfigReaderElementObserver* observer) override { mpElementObserver = observer; }
    void SetMetadataProvider(IMetadataProvider* provider) override { mpProvider = provider; }
    bool Read(IConfigContext& context) override;

private:
    std::string ReadLine(const std::string& line, IConfigContext& context);
    void Enter(const Place& place, IConfigContext& context);

    std::string mFileName;
    std::istream* mpStream = nullptr;  ///< not owned; null for a file
    IConfigReaderObserver* mpObserver = nullptr;
    IConfigReaderElementObserver* mpElementObserver = nullptr;
    IMetadataProvider* mpProvider = nullptr;
    std::optional<Place> mPlace;  ///< of the running pass
};

bool CKeyListReader::Read(IConfigContext& context) {
    CMessageHandler& messages =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "CKeyListReader::Read", true);
    std::ifstream file;
    if (mpStream == nullptr) {
        file.open(mFileName);
        if (!file) {
            messages.SetErrorMsg(0, "cannot open " + mFileName);
            return false;
        }
    }
    std::istream& input = mpStream == nullptr ? file : *mpStream;

    mPlace.reset();
    mpObserver->OnReadStarted(*this, context);
    // A bad line costs that line only; all of them end in one message.
    std::string errors;
    std::string line;
    for (int number = 1; std::getline(input, line); ++number) {
        if (line.empty() || line.front() == '#') continue;
        const std::string error = ReadLine(line, context);
        if (error.empty()) continue;
        if (!errors.empty()) errors += messages.GetParagraphString();
        errors += "line " + std::to_string(number) + ": " + error;
    }
    if (input.bad()) errors += "cannot read on";
    mpObserver->OnReadEnded(*this, context);
    if (errors.empty()) return true;
    messages.SetErrorMsg(0, errors);
    return false;
}

/// Gives what is wrong with the line, nothing for a good one.
std::string CKeyListReader::ReadLine(const std::string& line, IConfigContext& context) {
    std::istringstream fields(line);
    Place place;
    std::int64_t psid = 0;
    std::int64_t value = 0;
    fields >> place.subsystem >> place.device >> place.store >> psid >> value;
    if (fields.fail() || !(fields >> std::ws).eof()) return "five numbers expected";
    if (place.subsystem < 0 || place.subsystem >= SUBSYSTEM_MAX) return "unknown subsystem type";
    if (!std::in_range<std::uint8_t>(place.device)) return "device must be between 0 and 255";
    if (!std::in_range<std::uint16_t>(place.store)) return "store must be between 0 and 65535";
    if (!std::in_range<std::uint32_t>(psid)) return "key number must be between 0 and 4294967295";
    Enter(place, context);

    const IMetadata& key =
        mpProvider->MetadataByPsid(static_cast<std::uint32_t>(psid), context, /*details=*/true);
    if (!key.IsValid()) return "unknown key " + std::to_string(psid);
    if (key.IsArray() || key.NumIndexes() != 0) return key.Name() + " is not a single integer";
    if (value < key.Min() || value > key.Max()) {
        return key.Name() + " must be between " + std::to_string(key.Min()) + " and " +
               std::to_string(key.Max());
    }
    const std::string type = key.TypeName();
    for (const auto& known : PAYLOADS) {
        if (type != known.type) continue;
        IPayload* payload = known.make(value, key);
        if (payload == nullptr) return key.Name() + " does not fit " + type;
        // From here on the element owns the payload, and the observer the element.
        auto element = std::make_unique<CIndexedElement>(key.Psid(), key.Name(), std::vector<std::uint32_t>(),
                                                         std::vector<IPayload*>{payload}, /*changed=*/false);
        element->Use(key);
        mpElementObserver->OnElementFound(element.release(), context);
        return {};
    }
    return key.Name() + " is not a single integer";
}

/// Tells the model and the metadata where the keys that follow belong.
void CKeyListReader::Enter(const Place& place, IConfigContext& context) {
    if (mPlace == place) return;
    context.SetTag(STR_SUBSYSTEM_TYPE, static_cast<std::int32_t>(place.subsystem));
    context.SetTag(STR_DEVICE, static_cast<std::int32_t>(place.device));
    context.SetTag(STR_STORE, static_cast<std::int32_t>(place.store));
    mpObserver->OnSubsystemFound(*this, context);  // the model calls SetElementObserver from in there
    mpProvider->MetadataList(context, /*load=*/true);
    mPlace = place;
}

/// A connection is the name of a file; without one the argument is the `std::iostream` to read.
IConfigReader* CreateReader(const char* connection, void* argument) {
    return KesPluginCreate<IConfigReader>([&]() -> IConfigReader* {
        if (*connection != '\0') return new CKeyListReader(std::string(connection));
        if (argument == nullptr) return nullptr;
        return new CKeyListReader(static_cast<std::iostream*>(argument));
    });
}

}  // namespace

KES_PLUGIN_DESCRIBE("KeyList", CreateReader, nullptr, nullptr, nullptr)
