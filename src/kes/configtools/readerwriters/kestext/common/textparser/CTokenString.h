#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CCharSet.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// The base of all that is read from a text. A token keeps no position of its own: it looks at the next
/// character and consumes it only when it belongs to the token, so that the place of an error is how far the
/// token has consumed. Not the owner of its source.
class CTokenString {
public:
    explicit CTokenString(CTextReader* source) : mpSource(source) {}
    CTokenString(const CTokenString&) = delete;
    CTokenString& operator=(const CTokenString&) = delete;
    virtual ~CTokenString() = default;

    /// Consumes spaces and tabs; whether there was any.
    bool SkipWhitespace();
    /// The rest of the line; the newline is consumed and not part of it.
    std::string ReadLine() { return mpSource->ReadLine(); }
    /// The longest run of characters from the set.
    std::string ReadUntilNotMatch(const CCharSet& set);
    /// The characters up to the first from the set, which is left unread, or up to the end of the text.
    std::string ReadUntilMatch(const CCharSet& set);

    CTextReader* Source() const { return mpSource; }

protected:
    CTextReader* mpSource;
};

/// Whether "0x" or "0X" comes next.
bool StartsHexNumber(CTextReader& source);

}  // namespace VemoKesConfigTools
