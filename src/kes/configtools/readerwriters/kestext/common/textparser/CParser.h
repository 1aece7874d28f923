#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CDelimiter.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CName.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParseContext.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// The skeleton of a parser for lines of a key, a delimiter and a value. What a key and a value look like is
/// up to the derived class. Lives for one pass.
class CParser : public CTokenString {
public:
    CParser(CTextReader* source, CParseContext* context) : CTokenString(source), mpParseContext(context) {}

    /// The three tokens of a line, new and owned by the caller. Name and value are null when there can be
    /// none.
    virtual CDelimiter* GetDelimiter() = 0;
    virtual CName* GetName() = 0;
    virtual CValue* GetValue(const std::string& name) = 0;
    /// line ::= [prefix] key {blank} delimiter {blank} [value] {blank} newline
    virtual CParserError ParseLine();
    /// The words of an error's code.
    virtual std::string GetErrorText(CParserError error);
    /// Reads what may stand in front of a key.
    virtual CParserError Prefix();

    /// text ::= {{blank} [line]}
    /// Returns at the first failed line, or at the end of the text with `PE_END_OF_DATA`, or
    /// `PE_NO_CONFIG_DATA` when the pass has met no key line. After a failed line the caller drops the rest
    /// of it with `DropLine` and calls again.
    CParserError Parse();
    /// Drops what is left of the line that failed, unless the failing step has consumed its newline already.
    void DropLine();

protected:
    /// text ::= {blank} newline
    /// `PE_UNEXPECTED_TEXT` for anything else, with the newline consumed.
    CParserError CheckEOL();
    /// A line begins at this offset.
    void BeginLine(std::size_t offset) {
        mLineStart = offset;
        if (mLineStart >= mNextProgress) ReportProgress();
    }
    /// Reads delimiter and value. `nameResult` is what the name's `Action` gave.
    CParserError ParseBehindName(const CName& name, const CParserError& nameResult);
    /// Hands the element of an accepted line over.
    void Deliver(const CName& name, COwnedPayloads& payloads, const IMetadata& metadata);
    /// Ends a line: checks that nothing is left on it, or gives the error its key. The name may be null.
    CParserError FinishLine(const CName* name, CParserError result);

    CParseContext* mpParseContext;
    bool mDataFound = false;  ///< a key line was accepted

private:
    CParserError ParseKeyLine(CName* name);
    CParserError ParseValue(const CName& name, const CParserError& nameResult);
    CParserError ReadValue(CValue& value, const CName& name);
    void ReportProgress();

    static constexpr std::size_t PROGRESS_STEP = std::size_t{1} << 20U;

    std::size_t mLineStart = 0;                 ///< offset at which the current line began
    std::size_t mNextProgress = PROGRESS_STEP;  ///< offset from which progress is reported next
};

}  // namespace VemoKesConfigTools
