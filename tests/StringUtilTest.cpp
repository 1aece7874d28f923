// The string utilities. Every table is tried with the byte form and the wide form.

#include "messages/CTheMsgHnd.h"
#include "util/misc/stringutil.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace VemoKesConfigTools;

namespace {

template <typename Char>
class StringUtil : public testing::Test {
protected:
    using Text = std::basic_string<Char>;
    /// The text in the characters under test; a byte above 0x7F becomes the character of that value.
    static Text T(const std::string& text) {
        Text result;
        for (const char c : text) result.push_back(static_cast<Char>(static_cast<unsigned char>(c)));
        return result;
    }
};
using Chars = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(StringUtil, Chars);

TYPED_TEST(StringUtil, TrimsTheSixWhitespaceCharacters) {
    const struct {
        std::string text, leading, trailing, both;
    } rows[] = {
        {"", "", "", ""},
        {" \t\f\v\n\r", "", "", ""},
        {"ab", "ab", "ab", "ab"},
        {"\r\n a b \t", "a b \t", "\r\n a b", "a b"},
        {"\xA0 a\xA0", "\xA0 a\xA0", "\xA0 a\xA0", "\xA0 a\xA0"},
        {std::string(" \0 ", 3), std::string("\0 ", 2), std::string(" \0", 2), std::string(1, '\0')},
    };
    for (const auto& row : rows) {
        auto leading = this->T(row.text), trailing = leading, both = leading;
        stringutil::TrimLeadingWhitespace(leading);
        stringutil::TrimTrailingWhitespace(trailing);
        stringutil::TrimLeadingAndTrailingWhitespace(both);
        EXPECT_EQ(leading, this->T(row.leading));
        EXPECT_EQ(trailing, this->T(row.trailing));
        EXPECT_EQ(both, this->T(row.both));
    }
}

TYPED_TEST(StringUtil, WritesHexNumbersAndLeavesTheStreamAsItWas) {
    const struct {
        std::int32_t number, digits;
        bool prefix;
        std::string text;
    } rows[] = {
        {0xAB, 4, true, "0x00ab"},  {0x12345, 2, false, "12345"},        {0, 0, true, "0x0"},
        {-1, 2, false, "ffffffff"}, {0x7FFFFFFF, 8, true, "0x7fffffff"},
    };
    for (const auto& row : rows) {
        std::basic_ostringstream<TypeParam> stream;
        stream.fill(TypeParam('*'));
        stringutil::WriteHexNumberToStream(stream, row.number, row.digits, row.prefix);
        EXPECT_EQ(stream.str(), this->T(row.text));
        EXPECT_EQ(stream.fill(), TypeParam('*'));
        stream << 26;
        EXPECT_EQ(stream.str(), this->T(row.text + "26")) << "decimal again";
    }
    std::basic_ostringstream<TypeParam> upper;
    upper << std::uppercase;
    stringutil::WriteHexNumberToStream(upper, 0xAB, 4, true);
    EXPECT_EQ(upper.str(), this->T("0x00AB"));
}

TYPED_TEST(StringUtil, ChangesTheCaseOfLettersOnly) {
    EXPECT_EQ(stringutil::ToUpper(this->T("az{@0_\xE4")), this->T("AZ{@0_\xE4"));
    EXPECT_EQ(stringutil::ToLower(this->T("AZ[`0_\xC4")), this->T("az[`0_\xC4"));
}

TYPED_TEST(StringUtil, ReadsHexNumbers) {
    const struct {
        std::string text;
        std::uint32_t value;
    } rows[] = {
        {"ff", 255},      {"FF", 255},      {"0xff", 255},
        {"0XfF", 255},    {"  ff zz", 255}, {"ffffffff", 0xFFFFFFFF},
        {"12,345", 0x12}, {"zz", 0},        {"", 0},
        {"0x", 0},        {"100000000", 0},
    };
    for (const auto& row : rows) EXPECT_EQ(stringutil::HexStrToInt(this->T(row.text)), row.value) << row.text;
}

TYPED_TEST(StringUtil, ReadsOctetsOrReturnsTheText) {
    const struct {
        std::string text, bytes;
    } rows[] = {
        {"AB CD", "\xAB\xCD"},
        {"ABCD", "\xAB\xCD"},
        {"0xAB 0xCD", "\xAB\xCD"},
        {"\t0xab\n", "\xAB"},
        {"", ""},
        {"  ", ""},
        {"0x41 42", "AB"},
        {"00", std::string(1, '\0')},
        {"A", "A"},
        {"ABC", "ABC"},
        {"0XAB", "0XAB"},
        {"0xABCD", "0xABCD"},
        {"AB C", "AB C"},
        {"410xAB", "410xAB"},
        {"0x", "0x"},
        {"0x4", "0x4"},
        {"41 g1", "41 g1"},
        {"0x 41", "0x 41"},
        {"4 1", "4 1"},
        {"0x41,", "0x41,"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(stringutil::OctStrToString(this->T(row.text)), this->T(row.bytes)) << row.text;
    }
}

TYPED_TEST(StringUtil, WritesOctetsThatCanBeReadAgain) {
    const std::string bytes("\x00\x80\x0F\xFF", 4);
    EXPECT_EQ(stringutil::StringToOctStr(this->T(bytes)), this->T("00800fff"));
    EXPECT_EQ(stringutil::OctetToOctetString(this->T(bytes)), this->T("00800fff"));
    EXPECT_EQ(stringutil::OctStrToString(this->T("00800fff")), this->T(bytes));
}

TEST(StringUtilWide, CharactersAboveOneByte) {
    EXPECT_EQ(stringutil::StringToOctStr(L"\x1234"), L"34");
    EXPECT_EQ(stringutil::OctetToOctetString(L"\x7\x123\x1234"), L"071231234");
    EXPECT_EQ(stringutil::OctStrToString(L"\uFF11\uFF12"), L"\uFF11\uFF12") << "wide digits are no digits";
    EXPECT_FALSE(stringutil::IsValidHexString(L"\uFF11", false));
    std::wstring text = L"\u2003a";
    stringutil::TrimLeadingWhitespace(text);
    EXPECT_EQ(text, L"\u2003a");
}

TYPED_TEST(StringUtil, ReadsIntegersOf32Bits) {
    const struct {
        std::string text;
        bool good;
        std::int32_t value;
    } rows[] = {
        {"10", true, 10},
        {"0x10", true, 16},
        {"010", true, 8},
        {" -7", true, -7},
        {"2147483647", true, INT32_MAX},
        {"-2147483648", true, INT32_MIN},
        {"2147483648", false, INT32_MAX},
        {"-2147483649", false, INT32_MIN},
        {"99999999999", false, INT32_MAX},
        {"99999999999999999999", false, INT32_MAX},
        {"10 ", false, 10},
        {std::string("10\0", 3), false, 10},
        {"x", false, 0},
        {"", false, 77},
    };
    for (const auto& row : rows) {
        std::int32_t value = 77;
        EXPECT_EQ(stringutil::StringToInteger(this->T(row.text), value), row.good) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TYPED_TEST(StringUtil, Pads) {
    const struct {
        std::string text;
        char pad;
        std::uint32_t length;
        bool left;
        std::string result;
    } rows[] = {
        {"ab", '0', 2, true, "ab"},     {"ab", '0', 0, false, "ab"},  {"ab", '0', 5, true, "000ab"},
        {"ab", '0', 5, false, "ab000"}, {"ab", '\0', 5, false, "ab"}, {"", ' ', 1, true, " "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(stringutil::PadString(this->T(row.text), TypeParam(row.pad), row.length, row.left),
                  this->T(row.result));
    }
}

TYPED_TEST(StringUtil, SplitsIntoPairs) {
    const struct {
        std::string text;
        char separator;
        bool good;
        std::string pairs;
    } rows[] = {
        {"a=1;b=2", '=', true, "[a:1][b:2]"},
        {"a=1;b;c=3", '=', false, "[a:1]"},
        {"", '=', true, ""},
        {";;a=;", '=', true, "[a:]"},
        {"a=b=c", '=', true, "[a:b=c]"},
        {"=1;a=1;a=2", '=', true, "[:1][a:2]"},
        {"a;b", '\0', true, "[a:][b:]"},
        {"old", '\0', true, "[old:]"},
    };
    for (const auto& row : rows) {
        std::map<std::basic_string<TypeParam>, std::basic_string<TypeParam>> map;
        if (row.text == "old") map[this->T("old")] = this->T("value");
        const bool good =
            stringutil::StringToMap(this->T(row.text), TypeParam(row.separator), TypeParam(';'), map);
        EXPECT_EQ(good, row.good) << row.text;
        auto pairs = this->T("");
        for (const auto& [key, value] : map)
            pairs += this->T("[") + key + this->T(":") + value + this->T("]");
        EXPECT_EQ(pairs, this->T(row.pairs)) << row.text;
    }
}

TYPED_TEST(StringUtil, AppendsPiecesToExistingOnes) {
    std::vector<std::basic_string<TypeParam>> pieces = {this->T("old")};
    stringutil::StringToVector(this->T("a,,b c,"), TypeParam(','), pieces);
    stringutil::StringToVector(this->T(""), TypeParam(','), pieces);
    EXPECT_EQ(pieces, (decltype(pieces){this->T("old"), this->T("a"), this->T("b c")}));
}

TYPED_TEST(StringUtil, RecognizesHexStrings) {
    const struct {
        std::string text;
        bool plain, prefixed;
    } rows[] = {
        {"", false, false},   {"1F", true, true},     {"0x1F", false, true}, {"0X1F", false, false},
        {"0x", false, true},  {"0", true, true},      {"1G", false, false},  {"0x0x1", false, false},
        {"1 ", false, false}, {"afAF09", true, true}, {"@", false, false},   {"`", false, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(stringutil::IsValidHexString(this->T(row.text), false), row.plain) << row.text;
        EXPECT_EQ(stringutil::IsValidHexString(this->T(row.text), true), row.prefixed) << row.text;
    }
}

TYPED_TEST(StringUtil, TracesUnderItsOwnGroup) {
    struct Recorder final : CMessageHandlerObserver {
        void OnTrace(const std::string& line) override { lines.push_back(line.substr(0, line.rfind(" ("))); }
        std::vector<std::string> lines;
    } recorder;
    CTheMsgHnd::AddObserver(recorder);
    CTheMsgHnd::ActivateDebug(true);
    std::int32_t value = 0;
    stringutil::StringToInteger(this->T("0x10"), value);
    std::basic_ostringstream<TypeParam> stream;
    stringutil::WriteHexNumberToStream(stream, 10, 3, true);
    CTheMsgHnd::ActivateDebug(false);
    CTheMsgHnd::RemoveObserver(recorder);
    const std::string write = "stringutil::WriteHexNumberToStream";
    const std::vector<std::string> expected = {
        "[103/0] -> stringutil::StringToInteger",
        "[103/2] stringutil::StringToInteger: Converted string \"0x10\" to integer \"16\"",
        "[103/0] <- stringutil::StringToInteger [returning true]",
        "[103/0] -> " + write,
        "[103/1] " + write + ": aNumberToDisplay=0x0000000a",
        "[103/1] " + write + ": aNumberOfDigits=3",
        "[103/1] " + write + ": aAddPrefix=true",
        "[103/0] <- " + write,
    };
    EXPECT_EQ(recorder.lines, expected);
}

TEST(StringUtilTrace, ShowsTheResultOfEachFunction) {
    struct Watcher final : CMessageHandlerObserver {
        Watcher() { CTheMsgHnd::AddObserver(*this); }
        ~Watcher() override {
            CTheMsgHnd::RemoveObserver(*this);
            CTheMsgHnd::ActivateDebug(false);
        }
        void OnTrace(const std::string& line) override {
            const std::size_t at = line.find("<-");
            if (at != std::string::npos) exits += line.substr(at, line.rfind(" (") - at) + "\n";
        }
        std::string exits;
    } watcher;
    CTheMsgHnd::ActivateDebug(true);
    std::int32_t number = 0;
    std::map<std::string, std::string> map;
    std::string trimmed = " a";
    stringutil::TrimLeadingWhitespace(trimmed);
    stringutil::ToUpper("ab");
    stringutil::ToLower(L"AB");
    stringutil::HexStrToInt("ff");
    stringutil::OctStrToString("41 42");
    stringutil::StringToOctStr("AB");
    stringutil::OctetToOctetString("AB");
    stringutil::StringToInteger("12", number);
    stringutil::StringToInteger("x", number);
    stringutil::PadString("a", '-', 3, true);
    stringutil::StringToMap("a=1", '=', ';', map);
    stringutil::IsValidHexString("zz", false);
    EXPECT_EQ(watcher.exits,
              "<- stringutil::TrimLeadingWhitespace\n<- stringutil::ToUpper [returning \"AB\"]\n"
              "<- stringutil::ToLower [returning \"ab\"]\n<- stringutil::HexStrToInt [returning 255]\n"
              "<- stringutil::OctStrToString [returning \"AB\"]\n"
              "<- stringutil::StringToOctStr [returning \"4142\"]\n"
              "<- stringutil::OctetToOctetString [returning \"4142\"]\n"
              "<- stringutil::StringToInteger [returning true]\n"
              "<- stringutil::StringToInteger [returning false]\n"
              "<- stringutil::PadString [returning \"--a\"]\n<- stringutil::StringToMap [returning true]\n"
              "<- stringutil::IsValidHexString [returning false]\n");
}

}  // namespace
