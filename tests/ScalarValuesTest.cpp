// Values of one token: integers of eight types, octets, quoted text, MAC addresses, enumerators. Each line
// follows a keyword line, so that it is line 2 of its text.

#include "kes/configtools/readerwriters/kestext/common/textparser/CEnum.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"
#include "support/TextReading.h"

#include <gtest/gtest.h>

namespace {

using namespace KesTest;

struct Row {
    std::string line;
    std::string outcome;
};

void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(OutcomeInAudio(row.line), row.outcome) << row.line;
}

TEST(ScalarValues, IntegersTakeDecimalAndHexadecimalUpToTheirWidth) {
    Check({
        {"u8 = 255", "1 u8=u8:255"},
        {"u8=+7", "1 u8=u8:7"},
        {"u8 = 0xFF", "1 u8=u8:255"},
        {"u8 = 0X1f", "1 u8=u8:31"},
        {"u8 = 0x0000000FF", "1 u8=u8:255"},
        {"u8 = 0000000000000000000255", "1 u8=u8:255"},
        {"u16 = 65535", "2 u16=u16:65535"},
        {"u32 = 4294967295", "3 u32=u32:4294967295"},
        {"u64 = 9223372036854775807", "4 u64=u64:9223372036854775807"},
        {"i8 = -128", "5 i8=i8:-128"},
        {"i8 = 0xFF", "5 i8=i8:-1"},
        {"i8 = 0x80", "5 i8=i8:-128"},
        {"i16 = -32768", "6 i16=i16:-32768"},
        {"i32 = 0xFFFFFFFF", "7 i32=i32:-1"},
        {"i64 = -9223372036854775808", "8 i64=i64:-9223372036854775808"},
        {"i64 = 9223372036854775807", "8 i64=i64:9223372036854775807"},
        {"whole = -5", "9 whole=i64:-5"},
    });
    EXPECT_EQ(OutcomeInAudio("u8 = " + std::string(65536, '0')), "1 u8=u8:0");
}

TEST(ScalarValues, IntegersOutsideTheirWidthFailAtTheDigit) {
    Check({
        {"u8 = 256", "! 2:8 #31 Number too large: u8"},
        {"u8 = 0x1FF", "! 2:10 #31 Number too large: u8"},
        {"u64 = 18446744073709551616", "! 2:26 #31 Number too large: u64"},
        {"i8 = 128", "! 2:8 #31 Number too large: i8"},
        {"i8 = -129", "! 2:9 #30 Number too small: i8"},
        {"i8 = -1280", "! 2:10 #30 Number too small: i8"},
        {"u16 = -7", "! 2:7 #33 An unsigned number was expected: u16"},
        {"u8 = x", "! 2:6 #32 Number expected: u8"},
        {"u8 = +", "! 2:7 #32 Number expected: u8"},
        {"i8 = -x", "! 2:7 #32 Number expected: i8"},
        {"u8 = 0x g", "! 2:8 #34 A hex character was expected: u8"},
        {"u8 = 1\xFF", "1 u8=u8:1 ! 2:8 #4 Unexpected text  unexpected text '\xFF' at end of line"},
        {"i32 = -0x10", "7 i32=i32:0 ! 2:12 #4 Unexpected text  unexpected text 'x10' at end of line"},
    });
}

TEST(ScalarValues, IntegersOutsideTheRangeOfTheirKeyFailAfterTheValue) {
    Check({
        {"small = 3", "10 small=u8:3"},
        {"small = 4", "! 2:10 #24 Number is too large: small  must be between 1 and 3 (val=4)"},
        {"small = 0", "! 2:10 #23 Number is too small: small  must be between 1 and 3 (val=0)"},
        {"three = 4", "! 2:10 #24 Number is too large: three  must be 3"},
        {"positive = 0xFFFFFFFF",
         "! 2:22 #23 Number is too small: positive  must be between 0 and 100 (val=-1)"},
        {"whole = 6", "! 2:10 #24 Number is too large: whole  must be between -5 and 5 (val=6)"},
        {"u64 = 18446744073709551615",
         "! 2:27 #24 Number is too large: u64  must be between -9223372036854775808 and 9223372036854775807 "
         "(val=18446744073709551615)"},
    });
}

TEST(ScalarValues, OctetsAreEnclosedInBrackets) {
    Check({
        {"blob = [ 01 FF\t10 ]", "13 blob=\"<01><FF><10>\""},
        {"blob = [01fF]", "13 blob=\"<01><FF>\""},
        {"blob = []", "13 blob=\"\""},
        {"blob = [ ]", "13 blob=\"\""},
        {"blob = [ 1 ]", "! 2:11 #6 Invalid octet value: blob"},
        {"blob = [ 0G ]", "! 2:11 #6 Invalid octet value: blob"},
        {"blob = [ 01\n", "! 2:12 #18 Missing closing bracket: blob"},
        {"blob = [ 01", "! 2:12 #6 Invalid octet value: blob"},
        {"blob = \"a\"", "! 2:9 #19 Missing open bracket: blob"},
        {"blob = [01020304]", "! 2:18 #29 Invalid length: blob must have between 0 and 3 values."},
        {"pair = [01]", "! 2:12 #29 Invalid length: pair must have 2 values."},
        {"dev_name = [ 61 00 ]", "15 dev_name=\"a<00>\""},
    });
}

TEST(ScalarValues, QuotedTextHasEscapesAndNoComments) {
    Check({
        {R"(dev_name = "ab\"c\n")", "15 dev_name=\"ab\"c<0A>\""},
        {R"(dev_name = "\\\0\r")", "15 dev_name=\"\\<00><0D>\""},
        {R"(dev_name = "\u0041\u00e9\u20AC")", "15 dev_name=\"A<C3><A9><E2><82><AC>\""},
        {R"(dev_name = "\u0000x\uD83D")", "15 dev_name=\"x<EF><BF><BD>\""},
        {R"(dev_name = "a # /* b")", "15 dev_name=\"a # /* b\""},
        {R"(dev_name = "" # c)", "15 dev_name=\"\""},
        {R"(dev_name = "a"/* c */ /* d */)", "15 dev_name=\"a\""},
        {"dev_name = \"ab\\\ncd\"", "15 dev_name=\"abcd\""},
        {"dev_name = \"\xFF\xC3\x28\"", "15 dev_name=\"<FF><C3>(\""},
        {R"(dev_name = "\t")", "! 2:15 #28 Unknown escape character: dev_name"},
        {R"(dev_name = "\u00")", "! 2:18 #15 Must be hex number of 4 digits: dev_name"},
        {R"(dev_name = "\u00\u0041")", "! 2:24 #15 Must be hex number of 4 digits: dev_name"},
        {R"(dev_name = "\u00\t")", "! 2:19 #28 Unknown escape character: dev_name"},
        {"dev_name = \"ab\nu8 = 1", "1 u8=u8:1 ! 3:1 #16 Missing quote: dev_name"},
        {"dev_name = \"ab", "! 2:15 #16 Missing quote: dev_name"},
        {"dev_name = \"ab\\", "! 2:16 #16 Missing quote: dev_name"},
        {"dev_name = ab", "! 2:13 #16 Missing quote: dev_name"},
        {"dev_name = \"123456789\"",
         "! 2:23 #29 Invalid length: dev_name must have between 0 and 8 characters."},
        {"dev_name = \"\nu8 = 1 # x\nu16 = 2 /* y */",
         "1 u8=u8:1; 2 u16=u16:2 ! 3:1 #16 Missing quote: dev_name"},
    });
}

TEST(ScalarValues, MacAddressesKeepToOneSeparator) {
    Check({
        {"bd_addr = 00:02:5B:01:ab:CD", "16 bd_addr=\"<00><02>[<01><AB><CD>\""},
        {"bd_addr = 00-02-5B-01-ab-CD \n", "16 bd_addr=\"<00><02>[<01><AB><CD>\""},
        {"bd_addr = [ 00 02 5B 01 AB CD ]", "16 bd_addr=\"<00><02>[<01><AB><CD>\""},
        {"bd_addr = 00:02-5B",
         "! 2:17 #8 A mac delimiter is missing. Each octet should be separated by either a ':' or '-'. i.e. "
         "aa:bb:cc:dd:ee:ff or aa-bb-cc-dd-ee-ff: bd_addr"},
        {std::string("bd_addr = 00\0", 13),
         "! 2:14 #8 A mac delimiter is missing. Each octet should be separated by either a ':' or '-'. i.e. "
         "aa:bb:cc:dd:ee:ff or aa-bb-cc-dd-ee-ff: bd_addr"},
        {"bd_addr = 00:0", "! 2:15 #6 Invalid octet value: bd_addr"},
        {"bd_addr = 00:\n", "! 2:14 #6 Invalid octet value: bd_addr"},
        {"bd_addr = 00:01", "! 2:16 #29 Invalid length: bd_addr must have 6 values."},
    });
}

TEST(ScalarValues, EnumeratorsAreGivenByNameOrNumber) {
    const std::string choice = " must be one of MODE-X(70000), MODE_A(0), MODE_FAST(3).";
    Check({
        {"mode = mode_fast", "17 mode=MODE_FAST(3)"},
        {"mode = Mode-x", "17 mode=MODE-X(70000)"},
        {"mode = 0x3", "17 mode=MODE_FAST(3)"},
        {"mode = 7", "! 2:9 #22 Unknown value: mode 7" + choice},
        {"mode = NONE", "! 2:12 #22 Unknown value: mode NONE" + choice},
        {"mode = -5", "! 2:10 #22 Unknown value: mode -5" + choice},
        {"mode = 65536", "! 2:12 #31 Number too large: mode"},
        {"mode = ;", "17 mode=MODE_A(0) ! 2:9 #4 Unexpected text  unexpected text ';' at end of line"},
        {"odd = [01]", "! 2:7 #26 Unknown name: odd"},
    });
}

TEST(ScalarValues, WordsAreFourDigitsSeparatedBySpaces) {
    const struct {
        std::string text;
        std::int32_t code;
        std::vector<std::uint16_t> words;
    } rows[] = {
        {" 0001 aBcD \nx", PE_NONE, {1, 0xABCD}},
        {"", PE_NONE, {}},
        {"1234", PE_NONE, {0x1234}},
        {"1234 12", PE_WORD_NOT_4_HEX, {0x1234}},
        {"x", PE_WORD_NOT_4_HEX, {}},
        {"12345678", PE_EXPECTED_WHITESPACE, {0x1234}},
    };
    for (const auto& row : rows) {
        std::istringstream stream(row.text);
        CUnicodeFile file(&stream);
        CHexArray words(&file, nullptr);
        EXPECT_EQ(words.Parse().mCode, row.code) << row.text;
        EXPECT_EQ(words.Words(), row.words) << row.text;
    }
}

}  // namespace
