#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace VemoKesConfigTools {

/// The outcome of a parse step. The numbers are stable; `ParserErrorText` has the words.
enum ParserErrorCode : std::int32_t {
    PE_NONE = 0,
    PE_VALUE_NOT_SUPPORTED = 1,
    PE_INVALID_DELIMITER = 2,
    PE_DELIMITER_MISSING = 3,
    PE_UNEXPECTED_TEXT = 4,
    PE_EXPECTED_WHITESPACE = 5,
    PE_INVALID_OCTET = 6,
    PE_WORD_NOT_4_HEX = 7,
    PE_MAC_DELIMITER_MISSING = 8,
    PE_MISSING_OPENING_BRACE = 9,
    PE_MISSING_CLOSING_BRACE = 10,
    PE_MISSING_COMMA = 11,
    PE_UNKNOWN_SUBSYSTEM = 12,  ///< ends the pass
    PE_UNKNOWN_DEVICE = 13,
    PE_INVALID_STORE = 14,
    PE_NOT_4_DIGIT_HEX = 15,
    PE_MISSING_QUOTE = 16,
    PE_STORE_OUT_OF_RANGE = 17,
    PE_MISSING_CLOSING_BRACKET = 18,
    PE_MISSING_OPEN_BRACKET = 19,
    PE_NUMBER_WAS_EXPECTED = 20,
    PE_NO_KEY_NUMBER = 21,  ///< reads like `PE_UNKNOWN_NAME`, but no raw value helps
    PE_UNKNOWN_VALUE = 22,
    PE_VALUE_TOO_SMALL = 23,  ///< below the key's range
    PE_VALUE_TOO_LARGE = 24,  ///< above the key's range
    PE_WRONG_INDEX_COUNT = 25,
    PE_UNKNOWN_NAME = 26,       ///< a raw value under a key number is still accepted
    PE_SUBSYSTEM_NOT_SET = 27,  ///< ends the pass
    PE_UNKNOWN_ESCAPE = 28,
    PE_INVALID_LENGTH = 29,
    PE_NUMBER_TOO_SMALL = 30,  ///< below the width of its type
    PE_NUMBER_TOO_LARGE = 31,  ///< above the width of its type
    PE_NUMBER_EXPECTED = 32,
    PE_UNSIGNED_EXPECTED = 33,
    PE_HEX_EXPECTED = 34,
    PE_NAME_REQUIRED = 35,
    PE_NO_SYSTEM_VERSION = 36,
    PE_VERSION_ALREADY_SET = 37,
    PE_WRONG_ARRAY_LENGTH = 38,
    PE_NO_CONFIG_DATA = 39,  ///< a report, no error
    PE_END_OF_DATA = 40      ///< no error
};

/// The words of a code; "Unknown error" for a number that is none.
std::string_view ParserErrorText(std::int32_t code);

/// What a parse step returns: a code, what it has to add to the code's words, and the key of the line.
struct CParserError {
    CParserError() = default;
    CParserError(std::int32_t code, std::string detail = {}) : mCode(code), mDetail(std::move(detail)) {}

    bool Ok() const { return mCode == PE_NONE; }
    /// Replaces the code and empties the detail; the key stays.
    void SetCode(std::int32_t code) {
        mCode = code;
        mDetail.clear();
    }
    void SetDetail(std::string text) { mDetail = std::move(text); }
    void SetKey(std::string text) { mKey = std::move(text); }

    std::int32_t mCode = PE_NONE;
    std::string mDetail;
    std::string mKey;
};

}  // namespace VemoKesConfigTools
