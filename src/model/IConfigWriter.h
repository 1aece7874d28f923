#pragma once

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

class IConfigContext;
class IMetadataProvider;
class IPayload;

/// Receives what the model walks over. The order of the calls is that of `CChipConfig::Write` and
/// `CElement::Write`; a single element may also be written without `Begin` and `End` around it. Failures go
/// to the message service. Slot order is contract.
class IConfigWriter {
public:
    /// Sets the provider of names, labels and formats, not owned.
    virtual void SetMetadataProvider(IMetadataProvider* provider) = 0;
    virtual void Begin(IConfigContext& context) = 0;
    virtual void End(IConfigContext& context) = 0;
    /// The context is a `CKesContext` that holds the place.
    virtual void BeginSubsystem(IConfigContext& context) = 0;
    virtual void EndSubsystem(IConfigContext& context) = 0;
    virtual void BeginElement(IConfigContext& context) = 0;
    virtual void EndElement(IConfigContext& context) = 0;
    /// The key number, first within an element.
    virtual void WriteUid(std::uint32_t psid, IConfigContext& context) = 0;
    /// One item of the key's header. For `STR_HEADER_INDEX` the value is a signed 32-bit number. `size` is
    /// the size of the value in bytes.
    virtual void WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                                 IConfigContext& context) = 0;
    /// Once for each payload of the element; a composite's fields are written through `IWritable::Write` by
    /// the writer.
    virtual void WritePayload(IPayload& payload, IConfigContext& context) = 0;
    virtual ~IConfigWriter() = default;

protected:
    IConfigWriter() = default;
    IConfigWriter(const IConfigWriter&) = default;
    IConfigWriter& operator=(const IConfigWriter&) = default;
};

}  // namespace VemoKesConfigTools
