#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

/// Free functions for trimming, case, numbers, octets and splitting, each for byte strings and for wide
/// strings. Characters are classified as in the "C" locale, whatever the locale of the process.
namespace VemoKesConfigTools::stringutil {

/// Whitespace is space, tab, form feed, vertical tab, newline and carriage return.
KES_API void TrimLeadingWhitespace(std::string& aText);
KES_API void TrimLeadingWhitespace(std::wstring& aText);
KES_API void TrimTrailingWhitespace(std::string& aText);
KES_API void TrimTrailingWhitespace(std::wstring& aText);
KES_API void TrimLeadingAndTrailingWhitespace(std::string& aText);
KES_API void TrimLeadingAndTrailingWhitespace(std::wstring& aText);

/// Writes at least `aNumberOfDigits` digits. The stream keeps its fill character and the flags it had.
KES_API void WriteHexNumberToStream(std::ostream& aStream, std::int32_t aNumberToDisplay,
                                    std::int32_t aNumberOfDigits, bool aAddPrefix);
KES_API void WriteHexNumberToStream(std::wostream& aStream, std::int32_t aNumberToDisplay,
                                    std::int32_t aNumberOfDigits, bool aAddPrefix);

KES_API std::string ToUpper(const std::string& aText);
KES_API std::wstring ToUpper(const std::wstring& aText);
KES_API std::string ToLower(const std::string& aText);
KES_API std::wstring ToLower(const std::wstring& aText);

/// The number at the start of the text, with or without "0x". 0 when there is none or it is too large.
KES_API std::uint32_t HexStrToInt(const std::string& aText);
KES_API std::uint32_t HexStrToInt(const std::wstring& aText);

/// The bytes that the text lists as pairs of hexadecimal digits, `AB CD`, `ABCD` or `0xAB 0xCD`. A text of
/// another form comes back unchanged.
KES_API std::string OctStrToString(const std::string& aText);
KES_API std::wstring OctStrToString(const std::wstring& aText);
/// Two digits for each byte; of a wide character only the low byte.
KES_API std::string StringToOctStr(const std::string& aText);
KES_API std::wstring StringToOctStr(const std::wstring& aText);
/// Two digits for each character, and more for a wide character above 0xFF.
KES_API std::string OctetToOctetString(const std::string& aText);
KES_API std::wstring OctetToOctetString(const std::wstring& aText);

/// Reads a whole text as a number: hexadecimal behind "0x", octal behind "0", decimal otherwise. On failure
/// `aValue` has what could be read, and the nearest limit for a number out of range.
KES_API bool StringToInteger(const std::string& aText, std::int32_t& aValue);
KES_API bool StringToInteger(const std::wstring& aText, std::int32_t& aValue);

/// Pads up to `aLength` characters. The pad character NUL pads nothing.
KES_API std::string PadString(const std::string& aText, char aPadChar, std::uint32_t aLength, bool aPadLeft);
KES_API std::wstring PadString(const std::wstring& aText, wchar_t aPadChar, std::uint32_t aLength,
                               bool aPadLeft);

/// Adds the pairs of the text, which stand between delimiters. Without a separator (NUL) all pieces are keys.
/// Stops with false at a piece that has no separator.
KES_API bool StringToMap(const std::string& aText, char aSeparator, char aDelimiter,
                         std::map<std::string, std::string>& aMap);
KES_API bool StringToMap(const std::wstring& aText, wchar_t aSeparator, wchar_t aDelimiter,
                         std::map<std::wstring, std::wstring>& aMap);
/// Appends the pieces between delimiters, empty ones left out.
KES_API void StringToVector(const std::string& aText, char aDelimiter, std::vector<std::string>& aVector);
KES_API void StringToVector(const std::wstring& aText, wchar_t aDelimiter,
                            std::vector<std::wstring>& aVector);

/// Whether there is nothing but hexadecimal digits, behind "0x" if that is allowed.
KES_API bool IsValidHexString(const std::string& aText, bool aAllowPrefix);
KES_API bool IsValidHexString(const std::wstring& aText, bool aAllowPrefix);

}  // namespace VemoKesConfigTools::stringutil
