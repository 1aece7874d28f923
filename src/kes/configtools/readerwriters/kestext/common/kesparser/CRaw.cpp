#include "kes/configtools/readerwriters/kestext/common/kesparser/CompositeValues.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/COctetString.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "model/CHelper.h"
#include "model/CKesContext.h"
#include "model/Payloads.h"

namespace VemoKesConfigTools {

CParserError CRaw::Parse() {
    CParserError result;
    KESTEXT_SENTRY_RETURNING("CRaw::Parse", result);
    SkipWhitespace();
    if (mpSource->GetChar() != '%') return result = PE_MISSING_OPENING_BRACE;
    SkipWhitespace();
    const bool wordMode = IsWordMode();
    while (mpSource->PeekChar() != '%' && !mpSource->AtEnd()) {
        std::unique_ptr<CValue> item = NewItem(wordMode);
        if (!item) return result = PE_UNEXPECTED_TEXT;
        if (result = item->Parse(); !result.Ok()) return result;
        mItems.push_back(std::move(item));
        SkipWhitespace();
    }
    if (mpSource->PeekChar() != '%') return result = PE_MISSING_CLOSING_BRACE;
    mpSource->Skip(1);
    return result;
}

bool CRaw::IsWordMode() const {
    CKesContext& context = *mpParseContext->mpConfigContext;
    const bool isBt = context.TagMatches(STR_SUBSYSTEM_TYPE, SUBSYSTEM_BT);
    bool isArmBt = false;
    if (isBt) {
        const int chip = CHelper::Ref().GetAssociatedChipId(mpParseContext->mpProvider, context);
        isArmBt = chip == 75 || chip == 76 || chip == 80 || chip == 82;
    }
    KESTEXT_TRACE(2, "CRaw::Parse", "isBt=%s  isArmBt=%s", isBt ? "true" : "false",
                  isArmBt ? "true" : "false");
    return isBt && !isArmBt;
}

std::unique_ptr<CValue> CRaw::NewItem(bool wordMode) {
    const bool isNumber = CInteger<std::uint16_t>::Is(*mpSource);
    if (wordMode) {
        if (!isNumber) return nullptr;
        return std::make_unique<CInteger<std::uint16_t>>(mpSource, mpParseContext);
    }
    if (COctetString::Is(*mpSource)) return std::make_unique<COctetString>(mpSource, mpParseContext);
    if (!isNumber) return nullptr;
    return std::make_unique<CInteger<std::uint64_t>>(mpSource, mpParseContext);
}

CParserError CRaw::Action(std::vector<IPayload*>& payloads, CParseContext* /*context*/,
                          const IMetadata& /*metadata*/) {
    for (const std::unique_ptr<CValue>& item : mItems) {
        if (const auto* word = dynamic_cast<const CInteger<std::uint16_t>*>(item.get())) {
            payloads.push_back(new CUint16Payload(word->mValue));
        } else if (const auto* number = dynamic_cast<const CInteger<std::uint64_t>*>(item.get())) {
            payloads.push_back(new CUint64Payload(number->mValue));
        } else if (const auto* octets = dynamic_cast<const COctetString*>(item.get())) {
            payloads.push_back(new CStringPayload({octets->Octets().begin(), octets->Octets().end()}, true));
        } else {
            return PE_VALUE_NOT_SUPPORTED;
        }
    }
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
