#pragma once

// A read in which each line goes through the plain filters and the tokens.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "support/PlainChain.h"
#include "support/TextReading.h"

#include <memory>

namespace KesTest {

class PlainParser final : public CKesParser {
public:
    PlainParser(std::unique_ptr<PlainChain> chain, CParseContext* context)
        : CKesParser(chain.get(), context), mChain(std::move(chain)) {}

private:
    std::unique_ptr<PlainChain> mChain;
};

class PlainConfigReader final : public CKesConfigReader {
public:
    using CKesConfigReader::CKesConfigReader;
    CParser* CreateParser(CTextReader* source) override {
        return new PlainParser(std::make_unique<PlainChain>(*source->Bottom()), mpParseContext);
    }
};

/// Records which places a reader announces and when elements are added.
class AnnouncedPlaces final : public IConfigReaderObserver {
public:
    explicit AnnouncedPlaces(CChipConfig& config) : mConfig(config) {}
    void OnReadStarted(IConfigReader& reader, IConfigContext& context) override {
        mConfig.OnReadStarted(reader, context);
    }
    void OnSubsystemFound(IConfigReader& reader, IConfigContext& context) override {
        const auto& place = static_cast<const CKesContext&>(context);
        calls += std::to_string(place.SubsystemType()) + "/" + std::to_string(place.Device()) + "/" +
                 std::to_string(place.Store()) + "/" + std::to_string(place.Order()) + " ";
        mConfig.OnSubsystemFound(reader, context);
    }
    void OnSubsystemCompleted(IConfigReader& reader, IConfigContext& context) override {
        mConfig.OnSubsystemCompleted(reader, context);
    }
    void OnReadEnded(IConfigReader& reader, IConfigContext& context) override {
        mConfig.OnReadEnded(reader, context);
    }
    std::string calls;

private:
    CChipConfig& mConfig;
};

/// Everything observable about reading this text with a reader of this class.
template <typename Reader>
std::string Told(const std::string& text, CKesContext context, IMetadataProvider& provider) {
    const Messages messages;
    std::istringstream stream(text);
    Reader reader(&stream);
    CChipConfig config;
    AnnouncedPlaces places(config);
    reader.SetMetadataProvider(&provider);
    reader.SetObserver(&places);
    const bool good = reader.Read(context);
    return std::string(good ? "good" : "bad") + "\n" + Dump(config) + "\n" + DumpStores(config.Stores()) +
           "\n" + messages.findings + "\n" + messages.statuses + "\n" + Messages::LastError() + "\n" +
           places.calls + "\n" + std::to_string(context.SubsystemType()) + "/" +
           std::to_string(context.Device()) + "/" + std::to_string(context.Store());
}

}  // namespace KesTest
