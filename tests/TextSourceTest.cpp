// From bytes to filtered characters: line ends, continuations, comments, and the positions used in messages.

#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "support/PlainChain.h"

#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <tuple>

using namespace VemoKesConfigTools;

namespace {

/// The chain of filters, built as for a read.
struct Chain {
    explicit Chain(const std::string& bytes) : stream(bytes), file(&stream) {}

    std::string ReadAll() {
        std::string text;
        for (char c = top.GetChar(); !top.Eof(); c = top.GetChar()) text += c;
        return text;
    }

    std::istringstream stream;
    CUnicodeFile file;
    CConcatLineFilter joined{&file};
    CLineCommentFilter uncommented{&joined, "#"};
    CBlockCommentFilter top{&uncommented};
};

std::string ReadFile(const std::string& bytes) {
    std::istringstream stream(bytes);
    CUnicodeFile file(&stream);
    std::string text;
    for (char c = file.GetChar(); !file.Eof(); c = file.GetChar()) text += c;
    return text;
}

TEST(TextSource, FoldsEveryLineEndToOneNewline) {
    using namespace std::string_literals;
    const struct {
        std::string bytes;
        std::string text;
    } rows[] = {
        {"", ""},
        {"a\r\nb", "a\nb"},
        {"a\rb", "a\nb"},
        {"a\nb", "a\nb"},
        {"a\r\rb", "a\nb"},
        {"a\r\r\nb", "a\n\nb"},
        {"a\r\n\r\nb", "a\n\nb"},
        {"a\r", "a\n"},
        {"\r\r\r", "\n\n"},
        {"\xEF\xBB\xBFk", "\xEF\xBB\xBFk"},
        {"\x80\xFF\0z"s, "\x80\xFF\0z"s},
    };
    for (const auto& row : rows) EXPECT_EQ(ReadFile(row.bytes), row.text);
}

TEST(TextSource, ReadsTheStreamToItsEnd) {
    std::istringstream stream("abc");
    const CUnicodeFile file(&stream);
    EXPECT_TRUE(stream.eof());
    CUnicodeFile nothing(&stream);
    EXPECT_EQ(nothing.GetChar(), -1) << "a stream that is not good gives an empty text";
}

TEST(TextSource, TwoByteCodingsKeepTheLowByte) {
    std::istringstream little(std::string("a\x01z\x02", 4));
    CUCS2LECodedFile le(&little);
    std::string text;
    le.ReadAll(text);
    EXPECT_EQ(text, "az");
    std::istringstream big(std::string("\x01\x61\x02\x7A\x03", 5));
    CUCS2BECodedFile be(&big);
    text.clear();
    be.ReadAll(text);
    EXPECT_EQ(text, "az") << "half a unit at the end is no character";
}

TEST(TextSource, TheEndIsDetectedByReadingPastIt) {
    std::istringstream stream("ab\n");
    CUnicodeFile file(&stream);
    EXPECT_EQ(file.PeekString(10), "ab\n");
    file.GetChar();
    EXPECT_EQ(file.GetColumn(), 1U);
    file.GetChar();
    file.GetChar();
    EXPECT_EQ(file.GetLine(), 1U);
    EXPECT_EQ(file.GetColumn(), 0U);
    EXPECT_FALSE(file.Eof());
    const CTextReader::Position before = file.GetPosition();
    EXPECT_EQ(file.PeekChar(), -1);
    EXPECT_TRUE(file.Eof());
    file.SetPosition(before);
    EXPECT_FALSE(file.Eof());

    Chain chain("\xFF");
    EXPECT_EQ(chain.top.GetChar(), '\xFF');
    EXPECT_FALSE(chain.top.Eof()) << "the byte 0xFF is not the end of the text";
    EXPECT_EQ(chain.top.PeekChar(), -1);
    EXPECT_FALSE(chain.top.Eof()) << "looking ahead restores the end";
}

TEST(TextSource, FiltersJoinLinesAndRemoveComments) {
    const struct {
        const char* text;
        const char* delivered;
        unsigned line;
    } rows[] = {
        {"ab\\\ncd", "abcd", 1},
        {"ab\\\n\\\ncd", "abcd", 2},
        {"ab\\ cd", "ab\\ cd", 0},
        {"ab\\ \ncd", "ab\\ \ncd", 1},
        {"ab\\", "ab", 0},
        {"ab\\\\\ncd", "ab\\cd", 1},
        {"a # b\nc", "a \nc", 1},
        {"# one\\\ntwo\nc", "\nc", 2},
        {"a#", "a", 0},
        {"a/* b */c", "ac", 0},
        {"a/* b\n c */d", "ad", 1},
        {"/**/x", "x", 0},
        {"/*/ x */y", "y", 0},
        {"/* one /* two */ three */", " three */", 0},
        {"/* a *//* b */c", "/* b */c", 0},
        {"/* a # b */\n c */d", "d", 1},
        {"# /* a\nb", "\nb", 1},
        {"/* never closed", "", 0},
        {"/* a *\\\n/b", "b", 1},
        {"/\\\n* a */b", "b", 1},
        {"\\\n# a\nb", "\nb", 2},
        {"*/ stray", "*/ stray", 0},
    };
    for (const auto& row : rows) {
        Chain chain(row.text);
        EXPECT_EQ(chain.ReadAll(), row.delivered) << row.text;
        EXPECT_EQ(chain.file.GetLine(), row.line) << row.text;
    }
}

TEST(TextSource, CommentFiltersCanBeSwitchedOffAndContinuationsCannot) {
    gFiltersEnabled = false;
    EXPECT_EQ(Chain("# a /* b */").ReadAll(), "# a /* b */");
    EXPECT_EQ(Chain("a\\\nb").ReadAll(), "ab");
    gFiltersEnabled = true;
}

TEST(TextSource, LookingAheadKeepsThePositionBeforeTheComment) {
    Chain chain("/* x */y");
    EXPECT_EQ(chain.top.PeekChar(), 'y');
    EXPECT_EQ(chain.file.GetColumn(), 0U);
    EXPECT_EQ(chain.top.GetChar(), 'y');
    EXPECT_EQ(chain.file.GetColumn(), 8U);
}

TEST(TextSource, TokensTakeRunsUpToAStopSet) {
    Chain chain("  \tname_1/* c */x-y rest");
    CTokenString token(&chain.top);
    EXPECT_TRUE(token.SkipWhitespace());
    EXPECT_FALSE(token.SkipWhitespace());
    EXPECT_EQ(token.ReadUntilNotMatch(CCharSet("")), "");
    EXPECT_EQ(token.ReadUntilNotMatch(NAME_CHARS), "name_1x");
    EXPECT_EQ(token.ReadUntilMatch(WHITESPACE_CHARS), "-y");
    EXPECT_EQ(token.ReadUntilMatch(CCharSet("#")), " rest");
    EXPECT_TRUE(chain.top.Eof());
    Chain newline("\n x");
    EXPECT_FALSE(CTokenString(&newline.top).SkipWhitespace());
}

/// With random texts of the significant characters: the fast chain returns the same characters and positions
/// as the plain one, for any sequence of calls, also when comments are switched off and on.
TEST(TextSource, FastChainEqualsThePlainOne) {
    const std::string alphabet = "ab \\\\\\\n\n##//**\"\xFF";
    std::mt19937 random(20250101);
    const auto pick = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t n = pick(24); n > 0; --n) text += alphabet[pick(alphabet.size())];
        Chain fast(text);
        std::istringstream stream(text);
        CUnicodeFile file(&stream);
        KesTest::PlainChain plain(file);
        while (!fast.top.Eof()) {
            const CTextReader::Position saved = plain.GetPosition();
            gFiltersEnabled = pick(5) != 0;
            switch (pick(7)) {
                case 0:
                    ASSERT_EQ(fast.top.PeekChar(), plain.PeekChar()) << text;
                    break;
                case 1: {
                    const std::size_t n = pick(4) + 1;
                    ASSERT_EQ(fast.top.PeekString(n), plain.PeekString(n)) << text;
                    break;
                }
                case 2: {
                    const std::size_t n = pick(3) + 1;
                    ASSERT_EQ(fast.top.Skip(n), plain.Skip(n)) << text;
                    break;
                }
                case 3:
                    ASSERT_EQ(fast.top.ReadLine(), plain.ReadLine()) << text;
                    break;
                case 4:
                    ASSERT_EQ(fast.top.AtEnd(), plain.AtEnd()) << text;
                    break;
                case 5: {
                    std::string run;
                    while (plain.PeekChar() == 'a' || plain.PeekChar() == '/') run += plain.GetChar();
                    ASSERT_EQ(CTokenString(&fast.top).ReadUntilNotMatch(CCharSet("a/")), run) << text;
                    break;
                }
                default:
                    ASSERT_EQ(fast.top.GetChar(), plain.GetChar()) << text;
                    if (pick(4) == 0) {  // go back, as a token does that turns out not to match
                        plain.SetPosition(saved);
                        fast.top.SetPosition(saved);
                    }
            }
            const CTextReader::Position at = fast.top.GetPosition();
            const CTextReader::Position expected = plain.GetPosition();
            ASSERT_EQ(std::tie(at.line, at.column, at.offset, at.eof),
                      std::tie(expected.line, expected.column, expected.offset, expected.eof))
                << text;
        }
    }
    gFiltersEnabled = true;
}

}  // namespace
