#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CCharCursor.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

#include <cstdint>
#include <limits>
#include <type_traits>

namespace VemoKesConfigTools {

/// As many hexadecimal digits as there are, of which leading zeros do not count.
inline constexpr std::uint16_t ANY_DIGITS = 0xFFFF;

/// The value of a hexadecimal digit, or -1.
constexpr int HexDigitValue(int c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// The grammar of numbers, once for each kind of cursor: `CCharCursor` for what the filters deliver,
// `CPlainCursor` for text in memory.

/// hex ::= digit{digits}
/// For a signed `T` the digits give the bit pattern. `PE_HEX_EXPECTED` at a character that is no digit where
/// one must stand; `PE_NUMBER_TOO_LARGE` at the first digit that `T` has no room for. `value` holds what was
/// read so far.
template <typename T, typename Cursor>
ParserErrorCode ReadHexNumberAt(Cursor& cursor, T& value, std::uint16_t digits) {
    using Bits = std::make_unsigned_t<T>;
    constexpr std::uint16_t ROOM = 2 * sizeof(T);
    Bits bits = 0;
    std::uint16_t count = 0;
    bool seen = false;
    ParserErrorCode result = PE_NONE;
    while (count < digits) {
        const int digit = HexDigitValue(cursor.Peek());
        if (digit < 0) {
            if (digits != ANY_DIGITS || !seen) result = PE_HEX_EXPECTED;
            break;
        }
        seen = true;
        if (count >= ROOM) {
            result = PE_NUMBER_TOO_LARGE;
            break;
        }
        bits = static_cast<Bits>(static_cast<std::uint64_t>(bits) << 4U | static_cast<std::uint64_t>(digit));
        cursor.Skip();
        if (bits != 0 || digits != ANY_DIGITS) ++count;
    }
    value = static_cast<T>(bits);
    return result;
}

/// decimal ::= ["+" | "-"] digit{digit}          the "-" only for a signed `T`
/// The range is exactly that of `T`: `PE_NUMBER_TOO_LARGE` or `PE_NUMBER_TOO_SMALL` at the digit that would
/// leave it. `PE_UNSIGNED_EXPECTED` at a "-" that must not be, `PE_NUMBER_EXPECTED` where the first digit
/// should stand. `value` holds what was read so far, with its sign; `count` is the
/// number of digits, modulo 65536.
template <typename T, typename Cursor>
ParserErrorCode ReadDecimalNumberAt(Cursor& cursor, T& value, std::uint16_t& count) {
    value = 0;
    count = 0;
    bool negative = false;
    bool any = false;  // told apart from the count, which may wrap to 0
    if (cursor.Peek() == '-') {
        if constexpr (std::is_unsigned_v<T>) return PE_UNSIGNED_EXPECTED;
        negative = true;
        cursor.Skip();
    } else if (cursor.Peek() == '+') {
        cursor.Skip();
    }
    // The magnitude of the lowest value is one more than the highest value.
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<T>::max()) + (negative ? 1U : 0U);
    std::uint64_t magnitude = 0;
    ParserErrorCode result = PE_NONE;
    for (int c = cursor.Peek(); c >= '0' && c <= '9'; c = cursor.Peek()) {
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (magnitude > limit / 10 || (magnitude == limit / 10 && digit > limit % 10)) {
            result = negative ? PE_NUMBER_TOO_SMALL : PE_NUMBER_TOO_LARGE;
            break;
        }
        magnitude = magnitude * 10 + digit;
        cursor.Skip();
        any = true;
        ++count;
    }
    if (result == PE_NONE && !any) result = PE_NUMBER_EXPECTED;
    value = static_cast<T>(negative ? 0 - magnitude : magnitude);
    return result;
}

template <typename T>
CParserError ReadHexNumber(CTextReader& source, T& value, std::uint16_t digits) {
    CCharCursor cursor(source);
    return ReadHexNumberAt<T>(cursor, value, digits);
}

template <typename T>
CParserError ReadDecimalNumber(CTextReader& source, T& value, std::uint16_t& count) {
    CCharCursor cursor(source);
    return ReadDecimalNumberAt<T>(cursor, value, count);
}

}  // namespace VemoKesConfigTools
