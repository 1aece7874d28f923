#include "util/misc/stringutil.h"

#include "messages/CDebugSentry.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <iomanip>
#include <limits>
#include <locale>
#include <ostream>
#include <sstream>
#include <type_traits>

// While debug is off, tracing costs one test.
#define STRINGUTIL_SENTRY(function)                                                                       \
    const CDebugSentry sentry(CTheMsgHnd::DebugActivated() ? &Handler("stringutil::" function) : nullptr, \
                              __LINE__, __FILE__, "stringutil::" function)
#define STRINGUTIL_TRACE(level, function, ...)                                                          \
    do {                                                                                                \
        if (CTheMsgHnd::DebugActivated()) {                                                             \
            Handler("stringutil::" function)                                                            \
                .DebugOutputInHandler(level, false, false, "stringutil::" function, __FILE__, __LINE__, \
                                      __VA_ARGS__);                                                     \
        }                                                                                               \
    } while (false)

namespace VemoKesConfigTools::stringutil {

namespace {

CMessageHandler& Handler(const char* function) {
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_STRINGUTIL, function, false);
}

/// Runs a function with a sentry that traces its result. `line` is the first line of the function.
template <typename Function>
auto Traced(const char* name, std::uint32_t line, Function function) {
    decltype(function()) result{};
    {
        const CDebugSentryWithReturn sentry(CTheMsgHnd::DebugActivated() ? &Handler(name) : nullptr, line,
                                            __FILE__, name, &result);
        result = function();
    }
    return result;
}

template <typename Char>
using Text = std::basic_string<Char>;

template <typename Char>
constexpr Char WHITESPACE[] = {Char(' '),  Char('\t'), Char('\f'), Char('\v'),
                               Char('\n'), Char('\r'), Char(0)};

template <typename Char>
bool IsSpace(Char c) {
    return c != 0 && std::find(std::begin(WHITESPACE<Char>), std::end(WHITESPACE<Char>), c) !=
                         std::end(WHITESPACE<Char>);
}

template <typename Char>
bool IsIn(Char c, char first, char last) {
    return c >= Char(first) && c <= Char(last);
}

/// The value of a hexadecimal digit; -1 for any other character.
template <typename Char>
std::int32_t DigitOf(Char c) {
    if (IsIn(c, '0', '9')) return static_cast<std::int32_t>(c - Char('0'));
    if (IsIn(c, 'a', 'f')) return static_cast<std::int32_t>(c - Char('a')) + 10;
    if (IsIn(c, 'A', 'F')) return static_cast<std::int32_t>(c - Char('A')) + 10;
    return -1;
}

template <typename Char>
bool IsDigit(Char c) {
    return DigitOf(c) >= 0;
}

/// Appends lower-case hexadecimal digits, at least two.
template <typename Char>
void AppendHex(Text<Char>& text, std::uint32_t value) {
    std::uint32_t shift = 4;
    while (shift < 28 && (value >> (shift + 4)) != 0) shift += 4;
    for (;; shift -= 4) {
        text.push_back(Char("0123456789abcdef"[(value >> shift) & 0xFU]));
        if (shift == 0) return;
    }
}

template <typename Char>
void TrimLeading(Text<Char>& text) {
    STRINGUTIL_SENTRY("TrimLeadingWhitespace");
    text.erase(0, text.find_first_not_of(WHITESPACE<Char>));
}

template <typename Char>
void TrimTrailing(Text<Char>& text) {
    STRINGUTIL_SENTRY("TrimTrailingWhitespace");
    text.erase(text.find_last_not_of(WHITESPACE<Char>) + 1);
}

template <typename Char>
void TrimBoth(Text<Char>& text) {
    STRINGUTIL_SENTRY("TrimLeadingAndTrailingWhitespace");
    TrimLeading(text);
    TrimTrailing(text);
}

template <typename Char>
void WriteHex(std::basic_ostream<Char>& stream, std::int32_t number, std::int32_t digits, bool prefix) {
    STRINGUTIL_SENTRY("WriteHexNumberToStream");
    STRINGUTIL_TRACE(1, "WriteHexNumberToStream", "aNumberToDisplay=0x%08x", static_cast<unsigned>(number));
    STRINGUTIL_TRACE(1, "WriteHexNumberToStream", "aNumberOfDigits=%d", digits);
    STRINGUTIL_TRACE(1, "WriteHexNumberToStream", "aAddPrefix=%s", prefix ? "true" : "false");
    const std::ios_base::fmtflags flags = stream.flags();
    // The locale of the stream might group digits.
    const std::locale locale = stream.imbue(std::locale::classic());
    if (prefix) stream << Text<Char>{Char('0'), Char('x')};
    const Char fill = stream.fill(Char('0'));
    stream << std::setw(digits) << std::hex << number;
    stream.fill(fill);
    stream << std::setiosflags(flags);
    stream.imbue(locale);
}

template <typename Char>
Text<Char> Upper(Text<Char> text) {
    return Traced("stringutil::ToUpper", __LINE__, [&] {
        for (Char& c : text) {
            if (IsIn(c, 'a', 'z')) c = Char(c - Char('a') + Char('A'));
        }
        return text;
    });
}

template <typename Char>
Text<Char> Lower(Text<Char> text) {
    return Traced("stringutil::ToLower", __LINE__, [&] {
        for (Char& c : text) {
            if (IsIn(c, 'A', 'Z')) c = Char(c - Char('A') + Char('a'));
        }
        return text;
    });
}

template <typename Char>
std::uint32_t ReadHex(const Text<Char>& text) {
    return Traced("stringutil::HexStrToInt", __LINE__, [&] {
        std::basic_istringstream<Char> stream(text);
        stream.imbue(std::locale::classic());
        std::uint32_t value = 0;
        stream >> std::hex >> value;
        return stream.fail() ? 0 : value;
    });
}

/// Whether there is "0x" and two digits at `i`, delimited by whitespace or the ends of the text.
template <typename Char>
bool IsPrefixedOctet(const Text<Char>& text, std::size_t i) {
    return i + 3 < text.size() && text[i] == Char('0') && text[i + 1] == Char('x') && IsDigit(text[i + 2]) &&
           IsDigit(text[i + 3]) && (i == 0 || IsSpace(text[i - 1])) &&
           (i + 4 == text.size() || IsSpace(text[i + 4]));
}

template <typename Char>
Text<Char> ReadOctets(const Text<Char>& text) {
    return Traced("stringutil::OctStrToString", __LINE__, [&] {
        Text<Char> result;
        std::size_t i = 0;
        while (i < text.size()) {
            if (IsSpace(text[i])) {
                ++i;
                continue;
            }
            if (IsPrefixedOctet(text, i)) i += 2;
            if (i + 1 >= text.size() || !IsDigit(text[i]) || !IsDigit(text[i + 1])) return text;
            result.push_back(static_cast<Char>(DigitOf(text[i]) * 16 + DigitOf(text[i + 1])));
            i += 2;
        }
        return result;
    });
}

template <typename Char>
Text<Char> WriteBytes(const Text<Char>& text) {
    return Traced("stringutil::StringToOctStr", __LINE__, [&] {
        Text<Char> result;
        result.reserve(text.size() * 2);
        for (const Char c : text) AppendHex(result, static_cast<std::uint8_t>(c));
        return result;
    });
}

template <typename Char>
Text<Char> WriteCharacters(const Text<Char>& text) {
    return Traced("stringutil::OctetToOctetString", __LINE__, [&] {
        Text<Char> result;
        result.reserve(text.size() * 2);
        for (const Char c : text) AppendHex(result, static_cast<std::make_unsigned_t<Char>>(c));
        return result;
    });
}

long long ToNumber(const char* text, char** end) { return std::strtoll(text, end, 0); }
long long ToNumber(const wchar_t* text, wchar_t** end) { return std::wcstoll(text, end, 0); }

/// Limited to 32 bits explicitly, since `long` has 64 bits on some systems.
template <typename Char>
bool ReadInteger(const Text<Char>& text, std::int32_t& value) {
    if (text.empty()) return false;
    errno = 0;
    Char* end = nullptr;
    const long long number = ToNumber(text.c_str(), &end);
    value = static_cast<std::int32_t>(std::clamp<long long>(number, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
    return errno == 0 && number == value && end == text.c_str() + text.size();
}

template <typename Char>
Text<Char> Pad(Text<Char> text, Char pad, std::uint32_t length, bool left) {
    return Traced("stringutil::PadString", __LINE__, [&] {
        if (text.size() < length && pad != 0) text.insert(left ? 0 : text.size(), length - text.size(), pad);
        return text;
    });
}

/// Calls `use` for each non-empty piece until it returns false.
template <typename Char, typename Use>
bool ForEachPiece(const Text<Char>& text, Char delimiter, Use use) {
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(delimiter, begin), text.size());
        if (end > begin && !use(text.substr(begin, end - begin))) return false;
        begin = end + 1;
    }
    return true;
}

template <typename Char>
bool SplitToMap(const Text<Char>& text, Char separator, Char delimiter,
                std::map<Text<Char>, Text<Char>>& map) {
    return Traced("stringutil::StringToMap", __LINE__, [&] {
        return ForEachPiece(text, delimiter, [&](Text<Char> piece) {
            if (separator == 0) {
                map[std::move(piece)].clear();
                return true;
            }
            const std::size_t at = piece.find(separator);
            if (at == Text<Char>::npos) return false;
            map[piece.substr(0, at)] = piece.substr(at + 1);
            return true;
        });
    });
}

template <typename Char>
void SplitToVector(const Text<Char>& text, Char delimiter, std::vector<Text<Char>>& vector) {
    STRINGUTIL_SENTRY("StringToVector");
    ForEachPiece(text, delimiter, [&](Text<Char> piece) {
        vector.push_back(std::move(piece));
        return true;
    });
}

template <typename Char>
bool IsHex(const Text<Char>& text, bool allowPrefix) {
    return Traced("stringutil::IsValidHexString", __LINE__, [&] {
        const bool prefixed = allowPrefix && text.size() >= 2 && text[0] == Char('0') && text[1] == Char('x');
        return !text.empty() && std::all_of(text.begin() + (prefixed ? 2 : 0), text.end(), IsDigit<Char>);
    });
}

}  // namespace

void TrimLeadingWhitespace(std::string& aText) { TrimLeading(aText); }
void TrimLeadingWhitespace(std::wstring& aText) { TrimLeading(aText); }
void TrimTrailingWhitespace(std::string& aText) { TrimTrailing(aText); }
void TrimTrailingWhitespace(std::wstring& aText) { TrimTrailing(aText); }
void TrimLeadingAndTrailingWhitespace(std::string& aText) { TrimBoth(aText); }
void TrimLeadingAndTrailingWhitespace(std::wstring& aText) { TrimBoth(aText); }

void WriteHexNumberToStream(std::ostream& aStream, std::int32_t aNumberToDisplay,
                            std::int32_t aNumberOfDigits, bool aAddPrefix) {
    WriteHex(aStream, aNumberToDisplay, aNumberOfDigits, aAddPrefix);
}
void WriteHexNumberToStream(std::wostream& aStream, std::int32_t aNumberToDisplay,
                            std::int32_t aNumberOfDigits, bool aAddPrefix) {
    WriteHex(aStream, aNumberToDisplay, aNumberOfDigits, aAddPrefix);
}

std::string ToUpper(const std::string& aText) { return Upper(aText); }
std::wstring ToUpper(const std::wstring& aText) { return Upper(aText); }
std::string ToLower(const std::string& aText) { return Lower(aText); }
std::wstring ToLower(const std::wstring& aText) { return Lower(aText); }

std::uint32_t HexStrToInt(const std::string& aText) { return ReadHex(aText); }
std::uint32_t HexStrToInt(const std::wstring& aText) { return ReadHex(aText); }

std::string OctStrToString(const std::string& aText) { return ReadOctets(aText); }
std::wstring OctStrToString(const std::wstring& aText) { return ReadOctets(aText); }
std::string StringToOctStr(const std::string& aText) { return WriteBytes(aText); }
std::wstring StringToOctStr(const std::wstring& aText) { return WriteBytes(aText); }
std::string OctetToOctetString(const std::string& aText) { return WriteCharacters(aText); }
std::wstring OctetToOctetString(const std::wstring& aText) { return WriteCharacters(aText); }

bool StringToInteger(const std::string& aText, std::int32_t& aValue) {
    return Traced("stringutil::StringToInteger", __LINE__, [&] {
        if (!ReadInteger(aText, aValue)) return false;
        STRINGUTIL_TRACE(2, "StringToInteger", "Converted string \"%s\" to integer \"%d\"", aText.c_str(),
                         aValue);
        return true;
    });
}
bool StringToInteger(const std::wstring& aText, std::int32_t& aValue) {
    return Traced("stringutil::StringToInteger", __LINE__, [&] {
        if (!ReadInteger(aText, aValue)) return false;
        STRINGUTIL_TRACE(2, "StringToInteger", "Converted string \"%ls\" to integer \"%d\"", aText.c_str(),
                         aValue);
        return true;
    });
}

std::string PadString(const std::string& aText, char aPadChar, std::uint32_t aLength, bool aPadLeft) {
    return Pad(aText, aPadChar, aLength, aPadLeft);
}
std::wstring PadString(const std::wstring& aText, wchar_t aPadChar, std::uint32_t aLength, bool aPadLeft) {
    return Pad(aText, aPadChar, aLength, aPadLeft);
}

bool StringToMap(const std::string& aText, char aSeparator, char aDelimiter,
                 std::map<std::string, std::string>& aMap) {
    return SplitToMap(aText, aSeparator, aDelimiter, aMap);
}
bool StringToMap(const std::wstring& aText, wchar_t aSeparator, wchar_t aDelimiter,
                 std::map<std::wstring, std::wstring>& aMap) {
    return SplitToMap(aText, aSeparator, aDelimiter, aMap);
}
void StringToVector(const std::string& aText, char aDelimiter, std::vector<std::string>& aVector) {
    SplitToVector(aText, aDelimiter, aVector);
}
void StringToVector(const std::wstring& aText, wchar_t aDelimiter, std::vector<std::wstring>& aVector) {
    SplitToVector(aText, aDelimiter, aVector);
}

bool IsValidHexString(const std::string& aText, bool aAllowPrefix) { return IsHex(aText, aAllowPrefix); }
bool IsValidHexString(const std::wstring& aText, bool aAllowPrefix) { return IsHex(aText, aAllowPrefix); }

}  // namespace VemoKesConfigTools::stringutil
