#include "model/CIndexedElement.h"

namespace VemoKesConfigTools {

std::string CIndexedElement::ToString() const {
    return mName.empty() ? CElement::ToString() : mName + " (" + CElement::ToString() + ")";
}

}  // namespace VemoKesConfigTools
