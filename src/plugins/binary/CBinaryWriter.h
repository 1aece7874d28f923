#pragma once

#include "model/IConfigWriter.h"
#include "plugins/binary/Places.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace VemoKesConfigTools {

class CKesContext;

/// What the writers of binary files and images share: they encode all that they are given, and write at the
/// end of the walk.
class CBinaryWriter : public IConfigWriter {
public:
    CBinaryWriter(const CBinaryWriter&) = delete;
    CBinaryWriter& operator=(const CBinaryWriter&) = delete;

    void SetMetadataProvider(IMetadataProvider* provider) override { mpProvider = provider; }
    void Begin(IConfigContext& context) override;
    void End(IConfigContext& context) override;
    void BeginSubsystem(IConfigContext& context) override;
    void EndSubsystem(IConfigContext& context) override;
    void BeginElement(IConfigContext& context) override;
    void EndElement(IConfigContext& context) override;
    void WriteUid(std::uint32_t psid, IConfigContext& context) override;
    void WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                         IConfigContext& context) override;
    void WritePayload(IPayload& payload, IConfigContext& context) override;

protected:
    CBinaryWriter() = default;

    /// Writes the places, in the order in which the configuration holds them. `subject` is what messages
    /// name, to be set before anything is refused. Throws `Refusal`.
    virtual void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) = 0;

    IMetadataProvider* Provider() const { return mpProvider; }

private:
    IMetadataProvider* mpProvider = nullptr;
    std::vector<EncodedPlace> mPlaces;
    std::unordered_set<std::string> mKeysOfPlace;  ///< as key strings
    bool mFailed = false;
    std::uint32_t mPsid = 0;
    std::vector<std::uint32_t> mIndices;
    std::vector<const IPayload*> mPayloads;  ///< of the current element, which live until it ends
};

}  // namespace VemoKesConfigTools
