#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"

#include <array>

namespace VemoKesConfigTools {

namespace {

constexpr std::array<std::string_view, 41> TEXTS = {
    "",
    "Value is not supported",
    "Invalid delimiter",
    "Delimiter missing",
    "Unexpected text",
    "Expected whitespace",
    "Invalid octet value",
    "A word was not 4 hex characters",
    "A mac delimiter is missing. Each octet should be separated by either a ':' or '-'. i.e. "
    "aa:bb:cc:dd:ee:ff or "
    "aa-bb-cc-dd-ee-ff",
    "Missing opening brace",
    "Missing closing brace",
    "Missing comma",
    "Unknown subsystem",
    "Unknown device",
    "Invalid configuration store",
    "Must be hex number of 4 digits",
    "Missing quote",
    "Store out of range",
    "Missing closing bracket",
    "Missing open bracket",
    "A number was expected",
    "Unknown name",
    "Unknown value",
    "Number is too small",
    "Number is too large",
    "Wrong number of indices",
    "Unknown name",
    "Subsystem must be set using 'file=' or 'subsystem=' before setting value",
    "Unknown escape character",
    "Invalid length",
    "Number too small",
    "Number too large",
    "Number expected",
    "An unsigned number was expected",
    "A hex character was expected",
    "A name must be given",
    "No system version",
    "System version already set",
    "Wrong array length",
    "No configuration data found",
    "",
};
static_assert(TEXTS.size() == PE_END_OF_DATA + 1, "one text for each code");

}  // namespace

std::string_view ParserErrorText(std::int32_t code) {
    if (code < 0 || static_cast<std::size_t>(code) >= TEXTS.size()) return "Unknown error";
    return TEXTS[static_cast<std::size_t>(code)];
}

}  // namespace VemoKesConfigTools
