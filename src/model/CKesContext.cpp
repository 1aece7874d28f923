#include "model/CKesContext.h"

namespace VemoKesConfigTools {

std::string CKesContext::Name() const { return "CKesContext"; }

IConfigContext* CKesContext::Clone() const { return new CKesContext(*this); }

const CBaseContext::NumberField* CKesContext::FindNumber(std::string_view tag) const {
    if (tag == STR_DEVICE) return &mDevice;
    if (tag == STR_STORE) return &mStore;
    if (tag == STR_ORDER) return &mOrder;
    if (tag == STR_LAYER_NUMBER) return &mLayerNumber;
    if (tag == STR_FILE_TYPE) return &mFileType;
    return CBaseContext::FindNumber(tag);
}

const std::string* CKesContext::FindText(std::string_view tag) const {
    return tag == STR_CHIP ? &mChip : CBaseContext::FindText(tag);
}

}  // namespace VemoKesConfigTools
