#include "kes/configtools/readerwriters/kestext/common/textparser/CParser.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "model/CIndexedElement.h"
#include "model/CKesContext.h"
#include "model/CNullMetadata.h"
#include "model/IConfigReaderElementObserver.h"

#include <memory>
#include <utility>

namespace VemoKesConfigTools {

std::string CParser::GetErrorText(CParserError /*error*/) { return {}; }

CParserError CParser::Prefix() { return PE_NONE; }

CParserError CParser::Parse() {
    CParserError result;
    KESTEXT_SENTRY_RETURNING("CParser::Parse", result);
    while (!mpSource->Eof() && result.Ok()) {
        // Behind the last character there is nothing for a filter to look at.
        if (mpSource->Bottom()->PlainRun().empty()) {
            mpSource->Bottom()->GetChar();
            continue;
        }
        SkipWhitespace();
        if (mpSource->AtLineEnd()) {
            mpSource->SkipLine();
            continue;
        }
        BeginLine(mpSource->At().offset);
        result = ParseLine();
    }
    if (mpSource->Eof() && result.Ok()) result.SetCode(mDataFound ? PE_END_OF_DATA : PE_NO_CONFIG_DATA);
    return result;
}

void CParser::ReportProgress() {
    mNextProgress = mLineStart + PROGRESS_STEP;
    KesTextHandler("CParser::Parse").NotifyProgress(mLineStart);
}

void CParser::DropLine() {
    // A character that was read last leaves the column at 0 only if it was a newline.
    const CTextReader::Position position = mpSource->GetPosition();
    if (position.column == 0 && position.offset > mLineStart) return;
    mpSource->SkipLine();
}

CParserError CParser::CheckEOL() {
    SkipWhitespace();
    if (mpSource->AtLineEnd()) {
        mpSource->SkipLine();
        return PE_NONE;
    }
    return {PE_UNEXPECTED_TEXT, " unexpected text '" + ReadLine() + "' at end of line"};
}

CParserError CParser::ParseLine() {
    KESTEXT_TRACE(3, "CParser::ParseLine", "CParser - next line: %s", mpSource->PeekLine().c_str());
    CParserError result;
    KESTEXT_SENTRY_RETURNING("CParser::ParseLine", result);
    mpParseContext->ForgetName();
    std::unique_ptr<CName> name;
    result = Prefix();
    if (result.Ok()) {
        name.reset(GetName());
        if (!name) {
            result.SetCode(PE_SUBSYSTEM_NOT_SET);
        } else {
            result = ParseKeyLine(name.get());
        }
    }
    return result = FinishLine(name.get(), std::move(result));
}

CParserError CParser::FinishLine(const CName* name, CParserError result) {
    if (result.Ok()) return CheckEOL();
    if (name != nullptr && !name->mKeyName.empty()) {
        result.SetKey(name->mKeyName);
    } else if (name != nullptr && name->mId != 0) {
        result.SetKey("Id: " + std::to_string(name->mId));
    }
    return result;
}

CParserError CParser::ParseKeyLine(CName* name) {
    CParserError nameResult;
    CParserError result = name->Parse();
    if (result.Ok()) {
        result = name->Action();
        nameResult = result;
    }
    // An unknown name does not end the line yet: a raw value helps.
    if (!result.Ok() && result.mCode != PE_UNKNOWN_NAME) return result;
    return ParseBehindName(*name, nameResult);
}

CParserError CParser::ParseBehindName(const CName& name, const CParserError& nameResult) {
    SkipWhitespace();
    const std::unique_ptr<CDelimiter> delimiter(GetDelimiter());
    if (CParserError result = delimiter->Parse(); !result.Ok()) return result;
    SkipWhitespace();
    return ParseValue(name, nameResult);
}

CParserError CParser::ParseValue(const CName& name, const CParserError& nameResult) {
    const std::unique_ptr<CValue> value(GetValue(name.mKeyName));
    const bool isRaw = value && value->IsRaw();
    if (nameResult.mCode == PE_UNKNOWN_NAME) {
        if (!isRaw) return PE_UNKNOWN_NAME;
        KesTextHandler("CParser::ParseLine").ClearError(CMessageHandler::GROUP_DEFAULT);
    } else if (!value) {
        return PE_VALUE_NOT_SUPPORTED;
    }
    SkipWhitespace();
    if (name.mId == 0) return PE_NO_KEY_NUMBER;
    KESTEXT_TRACE(3, "CParser::ParseLine", "Context - Device(%d), Store(%d)", mpParseContext->mInfo.mDevice,
                  mpParseContext->mInfo.mStore);
    const bool bareNumber = isRaw && name.mKeyName.empty();
    value->mpMetadata = bareNumber ? &CNullMetadata::Ref() : &mpParseContext->ByName(name.mKeyName);
    return ReadValue(*value, name);
}

CParserError CParser::ReadValue(CValue& value, const CName& name) {
    COwnedPayloads payloads;
    if (value.IsEmptyValue()) {
        KESTEXT_TRACE(3, "CParser::ParseLine", "Key has no value set - %s", name.mKeyName.c_str());
        mDataFound = true;
        if (!mpParseContext->mpConfigContext->TagMatches(STR_INSERT_MODE, STR_APPEND)) {
            return value.RemoveElement(name.mIndices);
        }
        Deliver(name, payloads, *value.mpMetadata);
        return PE_NONE;
    }
    CParserError result = value.Parse();
    if (result.Ok()) result = value.Action(payloads.List(), mpParseContext, *value.mpMetadata);
    if (!result.Ok()) return result;
    Deliver(name, payloads, *value.mpMetadata);
    return result;
}

void CParser::Deliver(const CName& name, COwnedPayloads& payloads, const IMetadata& metadata) {
    mDataFound = true;
    // The record tells the name; without one there is none.
    auto element =
        std::make_unique<CIndexedElement>(name.mId, std::string(), name.mIndices, payloads.List(), false);
    payloads.Release();
    element->Use(metadata);
    // A line whose place nobody was told about has no taker for its element.
    if (mpParseContext->mpElementObserver == nullptr) return;
    mpParseContext->mpElementObserver->OnElementFound(element.release(), *mpParseContext->mpConfigContext);
}

}  // namespace VemoKesConfigTools
