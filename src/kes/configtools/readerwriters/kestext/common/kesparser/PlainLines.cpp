// Lines without a surprise, read straight from the text. It is what makes loading fast: nearly all lines of a
// text are a known key, "=" and a good value, most others name a place by "file". Such a line goes through no
// filter, makes no tokens and copies nothing that is not kept.
//
// Why the outcome is the same: a line is taken only if the filters would change nothing of it but take a
// comment from its end. The key's own `Action` looks it up and brings its place to the observers. A value is
// taken only if its tokens would take it, and only as a whole; otherwise nothing of it has happened yet, the
// position goes back to the end of the key, and the tokens read on from there. So all that is an error is
// theirs, with its position.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesName.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CPlainValue.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CPlainCursor.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "messages/CTheMsgHnd.h"
#include "model/CKesContext.h"
#include "model/IStoreManager.h"
#include "util/misc/ignorecase.h"

#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr CCharSet DIGITS("0123456789");

/// Consumes what may stand behind a value: blanks, a comment, the newline. False for anything else, and for a
/// comment that may go on in the next line.
bool TakeLineEnd(CPlainCursor& cursor) {
    cursor.SkipBlanks();
    if (cursor.Peek() == '#') {
        const std::string_view comment = cursor.RestOfLine();
        if (comment.find('\\') != std::string_view::npos) return false;
        cursor.MoveTo(comment.data() + comment.size());
    }
    return cursor.Take('\n');
}

}  // namespace

/// What is kept from line to line, so that a line allocates nothing that does not stay.
struct CKesParser::PlainLines {
    PlainLines(CTextReader* source, CParseContext* context) : name(source, context) {}

    CKesName name;
    COwnedPayloads payloads;
};

CKesParser::CKesParser(CTextReader* source, CParseContext* context) : CParser(source, context) {}

CKesParser::~CKesParser() = default;

void CKesParser::ReadPlainLines() { mpPlain = std::make_unique<PlainLines>(mpSource, mpParseContext); }

/// Consumes a whole line that names a place by "file". After a refusal the cursor stands anywhere.
bool CKesParser::TakePlainFile(CPlainCursor& cursor, CStoreAddress& place) {
    if (!EqualsIgnoringCase(cursor.TakeAll(KEYWORD_CHARS), "file")) return false;
    cursor.SkipBlanks();
    if (!cursor.Take('=')) return false;
    cursor.SkipBlanks();
    const SubsystemName* subsystem = FindSubsystem(cursor.TakeAll(KEYWORD_CHARS));
    std::uint16_t store = FILE_STORE_FIRST;
    std::uint16_t digits = 0;
    if (DIGITS.Holds(cursor.Peek()) && ReadDecimalNumberAt<std::uint16_t>(cursor, store, digits) != PE_NONE)
        return false;
    if (subsystem == nullptr || subsystem->type == -1) return false;
    if (store < FILE_STORE_FIRST || store > FILE_STORE_LAST) return false;
    place = {subsystem->type, IStoreManager::DEVICE_EEPROM, store};
    return TakeLineEnd(cursor);
}

/// Consumes a key, by name or number, in front of "=". After a refusal the cursor stands anywhere.
bool CKesParser::TakePlainKey(CPlainCursor& cursor) {
    const CKesContext& context = *mpParseContext->mpConfigContext;
    if (mpParseContext->mInfo.mSubsystem == -1 || !context.HasPlace()) return false;
    CKesName& name = mpPlain->name;
    name.mId = 0;
    name.mKeyName.clear();
    if (DIGITS.Holds(cursor.Peek())) {
        std::uint16_t digits = 0;
        if (cursor.TakeHexPrefix() ||
            ReadDecimalNumberAt<std::uint32_t>(cursor, name.mId, digits) != PE_NONE) {
            return false;
        }
    } else {
        const std::string_view word = cursor.TakeAll(KEYWORD_CHARS);
        const std::string_view rest = cursor.TakeAll(NAME_CHARS);
        name.mKeyName.assign(word.data(), word.size() + rest.size());
        // A number behind a subsystem may be that of a store, even if no key of its place follows.
        if (name.mKeyName.empty() || IsKeyword(name.mKeyName)) return false;
        if (!rest.empty() && FindSubsystem(word) != nullptr) return false;
    }
    const char* const end = cursor.At();
    cursor.SkipBlanks();
    const bool isKey = cursor.Peek() == '=';
    cursor.MoveTo(end);
    return isKey;
}

bool CKesParser::ParsePlainLines(CParserError& result) {
    const CTextReader::Position start = mpSource->At();
    const std::string_view text = mpSource->Bottom()->PlainRun();
    CPlainCursor cursor(text);
    std::uint32_t line = start.line;
    const char* lineBegin = text.data() - start.column;
    const auto offsetOf = [&](const char* at) {
        return start.offset + static_cast<std::size_t>(at - text.data());
    };
    const auto moveTo = [&](const char* at) {
        mpSource->SetPosition({line, static_cast<std::uint32_t>(at - lineBegin), offsetOf(at), false});
    };

    const char* at = cursor.At();
    // A trace shows each line that is looked at, so it needs the tokens.
    while (!CTheMsgHnd::DebugActivated()) {
        CStoreAddress place;
        if (TakePlainKey(cursor)) {
            BeginLine(offsetOf(at));
            const char* const behindName = cursor.At();
            if (!ParsePlainLine(cursor, result)) {
                moveTo(behindName);
                const CKesName& name = mpPlain->name;
                if (result.Ok() || result.mCode == PE_UNKNOWN_NAME) result = ParseBehindName(name, result);
                result = FinishLine(&name, std::move(result));
                return true;
            }
        } else if (cursor.MoveTo(at); TakePlainFile(cursor, place)) {
            BeginLine(offsetOf(at));
            EnterPlace(place);
            SetSubsystem();
        } else {
            break;
        }
        do {
            ++line;
            lineBegin = cursor.At();
            cursor.SkipBlanks();
            at = cursor.At();
        } while (TakeLineEnd(cursor));
        cursor.MoveTo(at);
    }
    if (at == text.data()) return false;
    moveTo(at);
    return true;
}

/// Reads and delivers one line, from behind its name on. When it is not plain, `result` is what the name
/// gave.
bool CKesParser::ParsePlainLine(CPlainCursor& cursor, CParserError& result) {
    CKesName& name = mpPlain->name;
    mpParseContext->mPrefix.mSubsystem = -1;
    result = name.Action();
    if (!result.Ok() || name.mId == 0) return false;
    const IMetadata& metadata = mpParseContext->ByName(name.mKeyName);
    cursor.SkipBlanks();
    cursor.Skip();
    cursor.SkipBlanks();
    COwnedPayloads& payloads = mpPlain->payloads;
    payloads.Clear();
    if (!CPlainValue(cursor, payloads.List()).Read(metadata) || !TakeLineEnd(cursor)) return false;
    Deliver(name, payloads, metadata);
    return true;
}

}  // namespace VemoKesConfigTools
