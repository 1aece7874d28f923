#include "kes/configtools/readerwriters/kestext/common/textparser/CEnum.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/CInteger.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "model/IMetadataDetail.h"
#include "model/Payloads.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <memory>

namespace VemoKesConfigTools {

bool CEnum::Is(CTextReader& source) {
    return ENUM_CHARS.Holds(static_cast<unsigned char>(source.PeekChar()));
}

CParserError CEnum::Parse() {
    SkipWhitespace();
    if (CInteger<std::uint16_t>::Is(*mpSource)) {
        CInteger<std::uint16_t> number(mpSource, mpParseContext);
        CParserError result = number.Parse();
        if (result.Ok()) mNumber = number.mValue;
        KESTEXT_TRACE(2, "CEnum::Parse", "0x%u", static_cast<unsigned>(mNumber));
        return result;
    }
    mName = ReadUntilNotMatch(ENUM_CHARS);
    KESTEXT_TRACE(2, "CEnum::Parse", "%s", mName.c_str());
    return PE_NONE;
}

CParserError CEnum::Action(std::vector<IPayload*>& payloads, CParseContext* /*context*/,
                           const IMetadata& metadata) {
    return EnumAction(payloads, metadata, mName, mNumber);
}

CParserError EnumAction(std::vector<IPayload*>& payloads, const IMetadata& metadata, std::string_view name,
                        std::uint16_t number) {
    const IMetadataDetail* detail = metadata.IsValid() ? metadata.Detail() : nullptr;
    const IMetadataDetail::EnumMap* enums = detail != nullptr ? detail->Enums() : nullptr;
    if (enums == nullptr) return PE_UNKNOWN_NAME;
    const auto found = std::find_if(enums->begin(), enums->end(), [&](const auto& entry) {
        return name.empty() ? entry.second == number : EqualsIgnoringCase(entry.first, name);
    });
    if (found == enums->end()) {
        std::string text = (name.empty() ? std::to_string(number) : std::string(name)) + " must be one of ";
        const char* separator = "";
        for (const auto& [known, value] : *enums) {
            text.append(separator).append(known).append("(").append(std::to_string(value)).append(")");
            separator = ", ";
        }
        return {PE_UNKNOWN_VALUE, text + "."};
    }
    auto payload = std::make_unique<CEnumPayload>(found->first, found->second);
    payload->Use(metadata);
    payloads.push_back(payload.get());
    static_cast<void>(payload.release());
    return PE_NONE;
}

CParserError CHexArray::Parse() {
    SkipWhitespace();
    while (!mpSource->AtLineEnd()) {
        std::uint16_t word = 0;
        if (!ReadHexNumber<std::uint16_t>(*mpSource, word, 4).Ok()) return PE_WORD_NOT_4_HEX;
        mWords.push_back(word);
        KESTEXT_TRACE(2, "CHexArray::Parse", "%u", static_cast<unsigned>(word));
        if (!SkipWhitespace() && !mpSource->AtEnd()) return PE_EXPECTED_WHITESPACE;
    }
    return PE_NONE;
}

}  // namespace VemoKesConfigTools
