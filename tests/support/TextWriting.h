#pragma once

// Elements defined in code, and what the writer writes for them.

#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesWriter.h"
#include "support/TextReading.h"

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace KesTest {

template <typename Payload>
IPayload* Number(decltype(std::declval<Payload&>().GetValue()) value, const IMetadata* metadata = nullptr) {
    auto* payload = new Payload(value);
    if (metadata != nullptr) payload->Use(*metadata);
    return payload;
}

inline IPayload* Octets(const std::string& bytes, const IMetadata* metadata = nullptr) {
    auto* payload = new CStringPayload(bytes, true);
    if (metadata != nullptr) payload->Use(*metadata);
    return payload;
}

inline IPayload* Composite(PayloadTypeEnum type, std::initializer_list<IPayload*> fields) {
    auto* composite = new CComplexPayload(type);
    for (IPayload* field : fields) composite->AddField(field);
    return composite;
}

inline CElement* Element(std::uint32_t psid, const std::vector<IPayload*>& payloads,
                         const std::vector<std::uint32_t>& indices = {}) {
    return new CIndexedElement(psid, "", indices, payloads, false);
}

inline CKesContext Place(std::int32_t subsystem, std::int32_t device, std::int32_t store) {
    CKesContext context = OverwriteContext();
    context.SetSubsystemType(subsystem);
    context.SetDevice(device);
    context.SetStore(store);
    return context;
}

inline CKesContext Simple(CKesContext context = OverwriteContext()) {
    context.SetTag(STR_TXT_SIMPLE_MODE, STR_TRUE);
    return context;
}

inline CKesContext Raw(CKesContext context = OverwriteContext()) {
    context.SetTag(STR_RAW_MODE, STR_TRUE);
    return context;
}

/// The text that `Write` of a configuration or an element writes to a stream.
inline std::string Written(IWritable& what, IMetadataProvider* provider,
                           CKesContext context = OverwriteContext()) {
    std::ostringstream stream;
    CKesWriter writer(&stream, provider);
    return what.Write(writer, context) ? stream.str() : "not written: " + Messages::LastError();
}

/// The same for an element, which is then deleted.
inline std::string Written(CElement* element, IMetadataProvider* provider,
                           const CKesContext& context = OverwriteContext()) {
    const std::unique_ptr<CElement> owned(element);
    return Written(static_cast<IWritable&>(*owned), provider, context);
}

}  // namespace KesTest
