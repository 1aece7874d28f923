#pragma once

#include "model/IConfigWriter.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

namespace files {
class OutputStream;
}

class IMetadata;

/// The writer of the text format, on a file or a stream. It knows no keys of its own: names, labels and
/// formats come from the metadata provider at the moment of writing. In full form composites spread over
/// continuation lines with the names of their fields in comments; under the tag "txtsimplemode" an element is
/// one line. Under the tag "rawmode" values come out in raw form.
///
/// On a stream, single elements may be written without `Begin` and `End`; each leaves its text in the stream
/// at its end. The state of the stream tells its owner whether all arrived. On a file the writer serves one
/// document, from `Begin` to `End`, and a file that cannot be opened or written is an error of number 0. One
/// element at a time is held in memory. One thread at a time.
class CKesWriter final : public IConfigWriter {
public:
    /// Writes to the standard output, without a provider.
    CKesWriter();
    /// Writes to the stream. Neither is owned, and the provider may be null.
    CKesWriter(std::ostream* stream, IMetadataProvider* provider);
    /// Writes the file of this name, which `Begin` creates or empties.
    CKesWriter(const std::string& fileName, IMetadataProvider* provider);
    CKesWriter(const CKesWriter&) = delete;
    CKesWriter& operator=(const CKesWriter&) = delete;

    void SetMetadataProvider(IMetadataProvider* provider) override;
    void Begin(IConfigContext& context) override;
    void End(IConfigContext& context) override;
    void BeginSubsystem(IConfigContext& context) override;
    void EndSubsystem(IConfigContext& context) override;
    void BeginElement(IConfigContext& context) override;
    void EndElement(IConfigContext& context) override;
    void WriteUid(std::uint32_t uid, IConfigContext& context) override;
    /// Takes the indexes of the key, and leaves other headers out.
    void WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                         IConfigContext& context) override;
    void WritePayload(IPayload& payload, IConfigContext& context) override;
    ~CKesWriter() override;
    /// The name under which a text shows a subsystem: its alias, or without one `canonical`.
    virtual void GetSubsystemName(IConfigContext& context, const std::string& canonical, std::string& result);

private:
    void OpenFile();
    void WriteOut(std::string_view text);

    bool IsArray(IConfigContext& context) const;
    void BeginValue(const IPayload& payload, IConfigContext& context);
    void AppendSeparator(const IPayload& payload);
    void AppendValue(IPayload& payload, IConfigContext& context);
    template <typename T>
    void IntPayload(const IPayload& payload);
    void StringPayload(const IPayload& payload);
    void EnumPayload(const IPayload& payload);
    void StructPayload(const IPayload& payload, IConfigContext& context);
    void ComplexFields(const IPayload& payload, IConfigContext& context);
    void AppendContinuation();
    void AppendFieldComment(const IMetadata* metadata);

    std::ostream* mpStream;
    IMetadataProvider* mpProvider;
    std::string mBuffer;        ///< the text of the element being composed
    std::uint32_t mUid = 0;     ///< the number of the key of the element
    std::string mFileName;      ///< empty when the writer works on a stream
    bool mFirstField = true;    ///< the next value needs no separator in front of it
    bool mNoPayloadYet = true;  ///< the element has not received a payload
    bool mArrayOpen = false;    ///< the brace of a key-level array has been written
    bool mRaw = false;          ///< the element is written in raw form
    bool mSimple = false;       ///< the element is written without comments and continuation lines
    std::uint16_t mDepth = 0;   ///< nesting depth, two blanks of indentation each
    std::unique_ptr<files::OutputStream> mpFile;  ///< what `mpStream` is while `Begin` has opened a file
};

}  // namespace VemoKesConfigTools
