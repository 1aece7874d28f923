#pragma once

#include "messages/Export.h"
#include "model/IConfigWriter.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

class IMetadata;

/// A writer in front of a text writer that lets each value come out in a form that reads back, and in the
/// form that its metadata asks for. Keys that the metadata does not know, and values that were given raw,
/// come out raw. Texts and MAC addresses, which carry no metadata of their own, come out as such and not as
/// octets; negative numbers of 8 bits in hexadecimal have two digits. All else it passes on; the values are
/// left as they are. Some values have no form that reads back; `Fault` tells. Neither the writer nor the
/// provider is owned.
class KES_API CRawKeysWriter final : public IConfigWriter {
public:
    CRawKeysWriter(IConfigWriter& writer, IMetadataProvider& provider)
        : mWriter(writer), mProvider(provider) {}

    void SetMetadataProvider(IMetadataProvider* provider) override { mWriter.SetMetadataProvider(provider); }
    void Begin(IConfigContext& context) override { mWriter.Begin(context); }
    void End(IConfigContext& context) override { mWriter.End(context); }
    void BeginSubsystem(IConfigContext& context) override { mWriter.BeginSubsystem(context); }
    void EndSubsystem(IConfigContext& context) override { mWriter.EndSubsystem(context); }
    void BeginElement(IConfigContext& context) override;
    /// Hands the payloads on, now that all of them are known.
    void EndElement(IConfigContext& context) override;
    void WriteUid(std::uint32_t psid, IConfigContext& context) override;
    void WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                         IConfigContext& context) override;
    /// Keeps the payload until the element ends. It must live until then.
    void WritePayload(IPayload& payload, IConfigContext& context) override;

    /// The first of what was written that does not read back: where it is, why, and what to do. None when all
    /// does.
    const std::optional<std::string>& Fault() const { return mFault; }

private:
    static std::unique_ptr<IPayload> InReadableForm(const IPayload& payload, const IMetadata& metadata);
    void CheckReadsBack(bool raw, const IConfigContext& context);

    IConfigWriter& mWriter;
    IMetadataProvider& mProvider;
    std::uint32_t mPsid = 0;
    std::vector<std::uint32_t> mIndices;  ///< of the current element, as are the payloads
    std::vector<IPayload*> mPayloads;
    std::optional<std::string> mFault;
};

}  // namespace VemoKesConfigTools
