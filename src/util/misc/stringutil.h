#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

/// Functions for trimming, case conversion, numbers, octets and splitting, each for byte strings and wide
/// strings. Characters are classified as in the "C" locale, regardless of the locale of the process.
namespace VemoKesConfigTools::stringutil {

/// Whitespace is space, tab, form feed, vertical tab, newline and carriage return.
KES_API void TrimLeadingWhitespace(std::string& aText);
KES_API void TrimLeadingWhitespace(std::wstring& aText);
KES_API void TrimTrailingWhitespace(std::string& aText);
KES_API void TrimTrailingWhitespace(std::wstring& aText);
KES_API void TrimLeadingAndTrailingWhitespace(std::string& aText);
KES_API void TrimLeadingAndTrailingWhitespace(std::wstring& aText);

/// Writes at least `aNumberOfDigits` digits. The fill character and flags of the stream are preserved.
KES_API void WriteHexNumberToStream(std::ostream& aStream, std::int32_t aNumberToDisplay,
                                    std::int32_t aNumberOfDigits, bool aAddPrefix);
KES_API void WriteHexNumberToStream(std::wostream& aStream, std::int32_t aNumberToDisplay,
                                    std::int32_t aNumberOfDigits, bool aAddPrefix);

KES_API std::string ToUpper(const std::string& aText);
KES_API std::wstring ToUpper(const std::wstring& aText);
KES_API std::string ToLower(const std::string& aText);
KES_API std::wstring ToLower(const std::wstring& aText);

/// The number at the start of the text, with or without "0x". 0 if there is none or it is too large.
KES_API std::uint32_t HexStrToInt(const std::string& aText);
KES_API std::uint32_t HexStrToInt(const std::wstring& aText);

/// Decodes a text of pairs of hexadecimal digits, `AB CD`, `ABCD` or `0xAB 0xCD`, to bytes. Any other text is
/// returned unchanged.
KES_API std::string OctStrToString(const std::string& aText);
KES_API std::wstring OctStrToString(const std::wstring& aText);
/// Two digits for each byte; for a wide character only those of the low byte.
KES_API std::string StringToOctStr(const std::string& aText);
KES_API std::wstring StringToOctStr(const std::wstring& aText);
/// Two digits for each character, and more for a wide character above 0xFF.
KES_API std::string OctetToOctetString(const std::string& aText);
KES_API std::wstring OctetToOctetString(const std::wstring& aText);

/// Converts a whole text to a number: hexadecimal with the prefix "0x", octal with "0", decimal otherwise. On
/// failure `aValue` receives the part that could be read; for a number out of range the nearest limit.
KES_API bool StringToInteger(const std::string& aText, std::int32_t& aValue);
KES_API bool StringToInteger(const std::wstring& aText, std::int32_t& aValue);

/// Pads to `aLength` characters. Does nothing if the pad character is NUL.
KES_API std::string PadString(const std::string& aText, char aPadChar, std::uint32_t aLength, bool aPadLeft);
KES_API std::wstring PadString(const std::wstring& aText, wchar_t aPadChar, std::uint32_t aLength,
                               bool aPadLeft);

/// Adds the key-value pairs of the text, which are separated by delimiters. If the separator is NUL, all
/// pieces are keys. Stops and returns false at a piece without a separator.
KES_API bool StringToMap(const std::string& aText, char aSeparator, char aDelimiter,
                         std::map<std::string, std::string>& aMap);
KES_API bool StringToMap(const std::wstring& aText, wchar_t aSeparator, wchar_t aDelimiter,
                         std::map<std::wstring, std::wstring>& aMap);
/// Appends the pieces between delimiters, except empty ones.
KES_API void StringToVector(const std::string& aText, char aDelimiter, std::vector<std::string>& aVector);
KES_API void StringToVector(const std::wstring& aText, wchar_t aDelimiter,
                            std::vector<std::wstring>& aVector);

/// Whether the text consists of hexadecimal digits only, after an optional "0x" if that is allowed.
KES_API bool IsValidHexString(const std::string& aText, bool aAllowPrefix);
KES_API bool IsValidHexString(const std::wstring& aText, bool aAllowPrefix);

}  // namespace VemoKesConfigTools::stringutil
