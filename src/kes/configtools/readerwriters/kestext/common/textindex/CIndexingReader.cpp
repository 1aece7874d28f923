#include "kes/configtools/readerwriters/kestext/common/textindex/CIndexingReader.h"

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesName.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "model/CElement.h"
#include "model/CKesContext.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <string_view>
#include <utility>

namespace VemoKesConfigTools {

namespace {

/// Where the next character stands: behind all that the filters take away in front of it. Its line counts
/// from 1.
std::size_t NextCharacter(CTextReader& source, std::uint32_t* line = nullptr) {
    const CTextReader::Position saved = source.GetPosition();
    source.GetChar();
    const CTextReader::Position behind = source.GetPosition();
    source.SetPosition(saved);
    if (line != nullptr) *line = behind.line + 1;
    return behind.eof ? saved.offset : behind.offset - 1;
}

TextPlace PlaceOf(const CKesContext& context) {
    return {context.SubsystemType(), context.Device(), context.Store()};
}

class CIndexingName final : public CKesName {
public:
    CIndexingName(CTextReader* source, CParseContext* context, TextLine& line)
        : CKesName(source, context), mLine(line) {}

    CParserError Parse() override {
        mLine.key.begin = NextCharacter(*mpSource);
        CParserError result = CKesName::Parse();
        mLine.key.end = mpSource->At().offset;
        mLine.psid = mId;
        mLine.indices = mIndices;
        return result;
    }
    CParserError Action() override {
        CParserError result = CKesName::Action();
        mLine.psid = mId;
        return result;
    }

private:
    TextLine& mLine;
};

/// Stands in front of the value that does the work.
class CIndexingValue final : public CValue {
public:
    /// `start` is told where the value begins.
    CIndexingValue(CTextReader* source, CParseContext* context, std::unique_ptr<CValue> value, TextLine& line,
                   CTextReader::Position& start)
        : CValue(source, context), mpValue(std::move(value)), mLine(line), mStart(start) {}

    CParserError Parse() override {
        mpValue->mpMetadata = mpMetadata;
        mLine.value.begin = NextCharacter(*mpSource);
        mLine.effect = TextLine::Effect::Fails;  // until the element is delivered
        mStart = mpSource->GetPosition();
        CParserError result = mpValue->Parse();
        mLine.value.end = mpSource->At().offset;
        return result;
    }
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override {
        return mpValue->Action(payloads, context, metadata);
    }
    CParserError RemoveElement(const std::vector<std::uint32_t>& /*indices*/) override {
        mLine.effect = TextLine::Effect::Removes;
        return {};
    }
    bool IsEmptyValue() override {
        const bool empty = mpValue->IsEmptyValue();
        mLine.value.begin = mLine.value.end = mpSource->At().offset;
        return empty;
    }
    bool IsRaw() const override { return mpValue->IsRaw(); }

private:
    std::unique_ptr<CValue> mpValue;
    TextLine& mLine;
    CTextReader::Position& mStart;
};

class CIndexingParser final : public CKesParser {
public:
    CIndexingParser(CTextReader* source, CParseContext* context, std::vector<TextLine>& lines,
                    const TextPlace& place)
        : CKesParser(source, context), mLines(lines), mPlace(place) {}

    CParserError ParseLine() override {
        TextLine& line = mLines.emplace_back();
        line.all.begin = NextCharacter(*mpSource, &line.number);
        CParserError result = CKesParser::ParseLine();
        line.error = result.mCode;
        if (line.effect != TextLine::Effect::None) {
            line.place = mPlace;
            const CStoreAddress& named = line.isPrefixed ? mpParseContext->mPrefix : mpParseContext->mInfo;
            line.isStray = mPlace != TextPlace{named.mSubsystem, named.mDevice, named.mStore};
        } else if (mpParseContext->mpConfigContext->HasPlace()) {
            line.place = PlaceOf(*mpParseContext->mpConfigContext);
        }
        line.all.end = result.Ok() ? mpSource->At().offset : EndOfFailedLine(line.all.begin);
        const bool hasValue = line.effect == TextLine::Effect::Sets || line.effect == TextLine::Effect::Fails;
        if (!result.Ok() && hasValue) line.value.end = EndOfContent(line);
        return result;
    }
    CName* GetName() override {
        const std::unique_ptr<CName> usual(CKesParser::GetName());
        if (!usual) return nullptr;
        mLines.back().isPrefixed = mpParseContext->mPrefix.mSubsystem != -1;
        return new CIndexingName(mpSource, mpParseContext, mLines.back());
    }
    CValue* GetValue(const std::string& name) override {
        std::unique_ptr<CValue> value(CKesParser::GetValue(name));
        if (!value) return nullptr;
        return new CIndexingValue(mpSource, mpParseContext, std::move(value), mLines.back(), mValueStart);
    }

private:
    /// The pass drops the rest of a failed line, unless its newline is consumed already.
    std::size_t EndOfFailedLine(std::size_t begin) {
        const CTextReader::Position saved = mpSource->GetPosition();
        if (saved.column == 0 && saved.offset > begin) return saved.offset;
        mpSource->SkipLine();
        const std::size_t end = mpSource->At().offset;
        mpSource->SetPosition(saved);
        return end;
    }

    /// Where what stands on the line of a wrong value ends, without the comment behind it.
    std::size_t EndOfContent(const TextLine& line) {
        const CTextReader::Position saved = mpSource->GetPosition();
        mpSource->SetPosition(mValueStart);
        const std::size_t start = mValueStart.offset;
        const std::string_view rest = mpSource->Bottom()->PlainRun();
        // The line as a text of its own: what begins a comment may have been in quotes to the value, and the
        // search for the end of that comment would go far beyond the line.
        std::istringstream stream(std::string(rest.substr(0, line.all.end - start)));
        mpSource->SetPosition(saved);
        CUnicodeFile file(&stream);
        CConcatLineFilter joined(&file);
        CLineCommentFilter withoutLineComments(&joined, "#");
        CBlockCommentFilter source(&withoutLineComments);
        // A value that was not complete may have taken the end of the line.
        std::size_t end = line.value.end < line.all.end ? line.value.end : line.value.begin;
        for (char c = source.GetChar(); !source.Eof() && c != '\n'; c = source.GetChar()) {
            if (!WHITESPACE_CHARS.Holds(static_cast<unsigned char>(c)))
                end = std::max(end, start + source.At().offset);
        }
        return end;
    }

    std::vector<TextLine>& mLines;
    const TextPlace& mPlace;
    CTextReader::Position mValueStart;  ///< of the last value
};

}  // namespace

CIndexingReader::CIndexingReader(std::istream& stream, std::vector<TextLine>& lines)
    : CKesConfigReader(&stream), mLines(lines) {
    SetObserver(this);
}

CParser* CIndexingReader::CreateParser(CTextReader* source) {
    return new CIndexingParser(source, mpParseContext, mLines, mPlace);
}

void CIndexingReader::OnSubsystemFound(IConfigReader& reader, IConfigContext& context) {
    mPlace = PlaceOf(static_cast<const CKesContext&>(context));
    reader.SetElementObserver(this);
}

bool CIndexingReader::OnElementFound(CElement* element, IConfigContext& /*context*/) {
    const std::unique_ptr<CElement> noted(element);
    mLines.back().effect = TextLine::Effect::Sets;
    return true;
}

}  // namespace VemoKesConfigTools
