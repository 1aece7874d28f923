#include "model/CIndexedElement.h"

#include "model/IMetadata.h"

namespace VemoKesConfigTools {

CIndexedElement::CIndexedElement(std::uint32_t psid, const std::string& name,
                                 const std::vector<std::uint32_t>& indices,
                                 const std::vector<IPayload*>& payloads, bool changed)
    : CElement(psid, payloads, changed) {
    if (!name.empty() || !indices.empty()) mpRare = std::make_unique<const Rare>(Rare{name, indices});
}

std::string CIndexedElement::Name() const {
    if (mpRare && !mpRare->name.empty()) return mpRare->name;
    return Metadata() != nullptr && Metadata()->IsValid() ? Metadata()->Name() : std::string();
}

std::string CIndexedElement::ToString() const {
    const std::string name = Name();
    return name.empty() ? CElement::ToString() : name + " (" + CElement::ToString() + ")";
}

}  // namespace VemoKesConfigTools
