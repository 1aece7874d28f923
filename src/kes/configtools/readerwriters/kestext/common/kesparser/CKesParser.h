#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CParser.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class CPlainCursor;
class CStructField;

/// The kind of value that a key has.
enum KEYTYPE : std::int32_t {
    KT_UNKNOWN = 0,  ///< no usable metadata
    KT_OCTET_STRING = 1,
    KT_ENUM_VALUE = 2,
    KT_UINT8 = 3,
    KT_UINT16 = 4,
    KT_UINT32 = 5,
    KT_UINT64 = 6,
    KT_INT8 = 7,
    KT_INT16 = 8,
    KT_INT32 = 9,
    KT_INT64 = 10,
    KT_INTEGER = 11,
    KT_ENUM = 12,
    KT_STRUCT = 13,
    KT_ARRAY = 14,
    KT_MAC = 15,
    KT_QUOTED = 16,
    KT_RAW = 17  ///< told by the text alone
};

/// The KesText parser: adds to key lines the five keyword lines, which say where the keys belong, the prefix
/// that names a place for one line, and the choice of a value token from a key's metadata.
///
///   line ::= "version" "=" text | "file" "=" place | "subsystem" "=" word | "device" "=" word | "store" "="
///   number
///          | [place "."] key "=" [value]
///   place ::= word [decimal]
class CKesParser : public CParser {
public:
    CKesParser(CTextReader* source, CParseContext* context);
    CKesParser(const CKesParser&) = delete;
    CKesParser& operator=(const CKesParser&) = delete;
    ~CKesParser() override;

    CDelimiter* GetDelimiter() override;
    CName* GetName() override;
    CValue* GetValue(const std::string& name) override;
    CParserError ParseLine() override;
    std::string GetErrorText(CParserError error) override;
    CParserError Prefix() override;
    /// Whether the keyword stands here as a whole word. Moves nothing.
    virtual bool IsKeywordLine(const std::string& keyword);
    /// Registers the store of the context's place and announces the place.
    virtual CParserError SetSubsystem();
    /// Each reads its keyword line up to, not including, the end of the line.
    virtual CParserError DecodeVersion();
    virtual CParserError DecodeFile();
    virtual CParserError DecodeSubsystem();
    virtual CParserError DecodeDevice();
    virtual CParserError DecodeStore();
    /// The alias of a subsystem name, or the name itself when it has none.
    virtual std::string FindAlias(IConfigContext& context, const std::string& name);

    /// A new token for a kind of value, null for `KT_UNKNOWN`.
    CValue* GetValue(KEYTYPE type);
    /// The kind of value that the text here has, given the metadata of its key.
    KEYTYPE KeyType(const IMetadata& metadata, bool checkArray);
    CParserError KeyType(const std::string& name, KEYTYPE& type);
    /// The kind of value that the metadata of a key asks for.
    static KEYTYPE TypeOf(const IMetadata& metadata, bool checkArray);

    /// From now on reads lines without a surprise straight from the text. Only for a parser of exactly this
    /// class whose source is the usual chain of filters.
    void ReadPlainLines();

private:
    struct PlainLines;
    struct SubsystemName {
        std::string name;
        std::string alias;
        std::int32_t type;  ///< -1 when the format has no such subsystem
    };
    struct Keyword {
        std::string_view word;
        CParserError (CKesParser::*decode)();
        std::string_view tag;  ///< loses its value when the line fails; none for a keyword of no place
    };
    static const std::array<Keyword, 5> KEYWORDS;

    // The stores that a "file" line or a prefix can name.
    static constexpr std::uint16_t FILE_STORE_FIRST = 1;
    static constexpr std::uint16_t FILE_STORE_LAST = 15;

    static bool IsKeyword(std::string_view word);
    CParserError ParseKeywordLine(const Keyword& keyword);
    CParserError IncompletePlace();
    CParserError StartValue(std::size_t keywordLength);
    void EnterPlace(const CStoreAddress& place);
    CParserError ParseFile(std::string& name, CStoreAddress& place);
    CParserError ParseSubsystem(std::string& name, CStoreAddress& place);
    CParserError ParseDevice(CStoreAddress& place);
    CParserError ParseStore(CStoreAddress& place);
    bool SurelyNoPrefix();
    bool MatchesWord(std::string_view keyword);
    /// Reads plain lines as far as they go, and the first that is none if its name was read. False when there
    /// was none, and nothing has happened.
    bool ParsePlainLines(CParserError& result);
    bool ParsePlainLine(CPlainCursor& cursor, CParserError& result);
    bool TakePlainFile(CPlainCursor& cursor, CStoreAddress& place);
    bool TakePlainKey(CPlainCursor& cursor);
    const std::vector<SubsystemName>& SubsystemNames();
    const SubsystemName* FindSubsystem(std::string_view word);
    std::string SubsystemList();

    std::string mSystemVersion;
    std::uint16_t mNextOrder = 1;
    std::vector<SubsystemName> mSubsystemNames;  ///< asked for once in a pass
    bool mSubsystemNamesKnown = false;
    std::unique_ptr<PlainLines> mpPlain;  ///< null while all lines go through the tokens
};

}  // namespace VemoKesConfigTools
