// How values are written, in full and in simple form, as a list and raw.

#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesFormat.h"
#include "support/TextWriting.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace KesTest;

/// The record of a key or field of the provider.
const IMetadata* RecordOf(const char* name);

MemoryProvider& Forms() {
    static MemoryProvider& provider = []() -> MemoryProvider& {
        static MemoryProvider made;
        made.AddSubsystem("audio");
        std::uint32_t psid = 0;
        const auto key = [&](const std::string& name, const std::string& type) -> Record& {
            return made.Key(++psid, name, type);
        };
        key("rf_gain", "uint8");
        key("i8", "int8");
        key("u16", "uint16");
        key("dec", "uint8").Format("signed_decimal");
        key("hex", "int16").Format("hexadecimal");
        key("other", "int32").Format("roman");
        key("rf_channels", "uint16").Format("unsigned_decimal").Array(1, 9);
        key("dev_name", "octet_string").Format("unicode_string").Range(0, 99);
        key("bd_addr", "octet_string").Format("mac_addr").Range(0, 99);
        key("blob", "octet_string").Range(0, 99);
        key("odd_blob", "octet_string").Format("roman").Range(0, 99);
        key("names", "octet_string").Format("unicode_string").Range(0, 9).Array(1, 9);
        key("mode", "MODE").Enum({{"MODE_SLOW", 0}, {"MODE_FAST", 3}});
        key("modes", "MODE").Enum({{"ON", 1}, {"OFF", 0}}).Array(1, 9);

        const Record& policy = made.Field("policy", "POLICY").Enum({{"POLICY_A", 0}});
        const Record& retries = made.Field("retries", "uint8").Range(0, 255);
        const Record& level = made.Field("level", "uint8").Range(0, 255);
        const Record& slots = made.Field("slots", "uint16").Range(0, 65535).Array(1, 9);
        const Record& more = made.Field("more", "uint16").Range(0, 65535).Array(1, 9);
        const Record& text = made.Field("text", "octet_string").Format("unicode_string").Range(0, 9);
        const Record& bits = made.Field("bits", "integer").Format("signed_decimal");
        key("link_cfg", "LINK").Struct({{&retries, 8}, {&policy, 8}, {&slots, 32}});
        const Record& peer = key("peers", "PEER").Struct({{&retries, 8}, {&level, 8}}).Array(1, 9);
        key("one", "ONE").Struct({{&text, 8}});
        key("lists", "LISTS").Struct({{&slots, 32}, {&more, 32}, {&bits, 4}});
        const Record& inner = made.Field("inner", "INNER").Struct({{&text, 8}, {&level, 8}});
        key("outer", "OUTER").Struct({{&retries, 8}, {&inner, 16}, {&level, 8}});
        key("first", "FIRST").Struct({{&inner, 16}, {&retries, 8}});
        key("nested", "NESTED").Struct({{&level, 8}, {&peer, 32}});
        key("deep", "DEEP").Struct({{&inner, 16}, {&slots, 32}}).Array(1, 9);
        return made;
    }();
    return provider;
}

const IMetadata* RecordOf(const char* name) {
    CKesContext context;
    const IMetadata& record = Forms().MetadataByName(name, context, false);
    EXPECT_TRUE(record.IsValid()) << name;
    return &record;
}

/// The line, read and written again, without its line end.
std::string Rewritten(const std::string& line, const CKesContext& context) {
    CChipConfig config;
    CKesContext reading = OverwriteContext();
    const Reading read = Read("file=audio\n" + line, config, reading, Forms());
    if (!read.good) return read.findings;
    std::string text = Written(*config.Subsystems().begin()->second->Elements().front(), &Forms(), context);
    EXPECT_EQ(text.back(), '\n');
    text.pop_back();
    return text;
}

struct Row {
    std::string line;
    std::string full;
    std::string simple = {};  ///< if different
};

void Check(const std::vector<Row>& rows) {
    for (const auto& [line, full, simple] : rows) {
        EXPECT_EQ(Rewritten(line, OverwriteContext()), full) << line;
        EXPECT_EQ(Rewritten(line, Simple()), simple.empty() ? full : simple) << line;
    }
}

TEST(PayloadFormat, SingleValuesAndArraysAreWrittenOnOneLine) {
    Check({
        {"rf_gain = 5", "rf_gain = 0x05"},
        {"rf_gain = 0", "rf_gain = 0x00"},
        {"rf_gain=65", "rf_gain = 0x41"},
        {"i8 = -1", "i8 = -1"},
        {"i8 = 65", "i8 = 65"},
        {"u16 = 0x0123", "u16 = 0x123"},
        {"dec = 0x41", "dec = 65"},
        {"dec = 0", "dec = 0"},
        {"hex = -2", "hex = 0xFFFE"},
        {"other = -2", "other = 0xFFFFFFFE"},
        {"rf_channels = {1,2, 300}", "rf_channels = {1, 2, 300}"},
        {"rf_channels = {0x10}", "rf_channels = {16}"},
        {"dev_name = \"ab\\\"\"", "dev_name = [ 61 62 22 ]"},
        {"bd_addr = 00-02-5b-01-AB-CD", "bd_addr = [ 00 02 5B 01 AB CD ]"},
        {"blob = [01ff10]", "blob = [ 01 FF 10 ]"},
        {"blob = []", "blob = [ ]"},
        {"names = {\"a,\", [ 62 ]}", "names = {[ 61 2C ], [ 62 ]}"},
        {"mode = 3", "mode = MODE_FAST"},
        {"modes = {off, ON}", "modes = {OFF, ON}"},
    });
}

TEST(PayloadFormat, StructsSpreadOverLinesInFullForm) {
    Check({
        {"link_cfg = {3, policy_a, {1, 2}}",
         "link_cfg =  \\\n"
         "{ \\\n"
         "   0x03 /* retries */ , \\\n"
         "   POLICY_A /* policy */ , \\\n"
         "    {0x01 /* slots */ , \\\n"
         "   0x02 /* slots */ } \\\n"
         "}",
         "link_cfg = {0x03, POLICY_A,  {0x01, 0x02}}"},
        {"peers = {{3, 4}, {5, 6}}",
         "peers = { \\\n"
         "  { \\\n"
         "     0x03 /* retries */ , 0x04 /* level */  \\\n"
         "  },  \\\n"
         "  { \\\n"
         "     0x05 /* retries */ , 0x06 /* level */  \\\n"
         "  }}",
         "peers = {{0x03, 0x04}, {0x05, 0x06}}"},
        {"one = {\"}\"}", "one =  \\\n{ \\\n   [ 7D ] \\\n}", "one = {[ 7D ]}"},
        {"lists = {{1}, {2, 3}, -4}",
         "lists =  \\\n"
         "{ \\\n"
         "    {0x01 /* slots */ }, \\\n"
         "    {0x02 /* more */ , \\\n"
         "   0x03 /* more */ }, \\\n"
         "   -4 /* bits */  \\\n"
         "}",
         "lists = { {0x01},  {0x02, 0x03}, -4}"},
        {"outer = {1, {\"a\", 2}, 3}",
         "outer =  \\\n"
         "{ \\\n"
         "   0x01 /* retries */ ,  \\\n"
         "  { \\\n"
         "     [ 61 ], \\\n"
         "     0x02 /* level */  \\\n"
         "  }, \\\n"
         "   0x03 /* level */  \\\n"
         "}",
         "outer = {0x01, {[ 61 ], 0x02}, 0x03}"},
        {"first = {{\"a\", 2}, 3}",
         "first =  \\\n"
         "{ \\\n"
         "    \\\n"
         "  { \\\n"
         "     [ 61 ], \\\n"
         "     0x02 /* level */  \\\n"
         "  }, \\\n"
         "   0x03 /* retries */  \\\n"
         "}",
         "first = {{[ 61 ], 0x02}, 0x03}"},
        {"nested = {1, {{2, 3}, {4, 5}}}",
         "nested =  \\\n"
         "{ \\\n"
         "   0x01 /* level */ ,  \\\n"
         "  { \\\n"
         "      \\\n"
         "    { \\\n"
         "       0x02 /* retries */ , \\\n"
         "       0x03 /* level */  \\\n"
         "    },  \\\n"
         "    { \\\n"
         "       0x04 /* retries */ , \\\n"
         "       0x05 /* level */  \\\n"
         "    } \\\n"
         "  } \\\n"
         "}",
         "nested = {0x01, {{0x02, 0x03}, {0x04, 0x05}}}"},
        {"deep = {{{\"a\", 2}, {7}}}",
         "deep = { \\\n"
         "  { \\\n"
         "      \\\n"
         "      { \\\n"
         "         [ 61 ], 0x02 /* level */  \\\n"
         "      },  {0x07 /* slots */ } \\\n"
         "  }}",
         "deep = {{{[ 61 ], 0x02},  {0x07}}}"},
    });
}

/// A struct, and the content of its braces in simple form.
TEST(PayloadFormat, FieldsOfOneNameShareTheirBraces) {
    const IMetadata* slots = nullptr;
    const IMetadata* more = nullptr;
    const IMetadata* bits = nullptr;
    CKesContext context;
    const auto& fields = RecordOf("lists")->Detail()->Fields();
    slots = fields[0]->Metadata();
    more = fields[1]->Metadata();
    bits = fields[2]->Metadata();
    const auto u16 = [](std::uint16_t value, const IMetadata* metadata) {
        return Number<CUint16Payload>(value, metadata);
    };
    const struct {
        IPayload* structure;
        const char* text;
    } rows[] = {
        {Composite(PAYLOAD_TYPE_STRUCT, {u16(1, slots), u16(2, slots), u16(9, bits)}), "{ {0x01, 0x02}, 9}"},
        {Composite(PAYLOAD_TYPE_STRUCT, {u16(9, bits), u16(1, slots), u16(2, more)}), "{9, {0x01}, {0x02}}"},
        {Composite(PAYLOAD_TYPE_STRUCT, {u16(1, slots), u16(2, nullptr), u16(3, slots)}),
         "{ {0x01, 0x02, 0x03}}"},
        {Composite(PAYLOAD_TYPE_STRUCT, {u16(1, nullptr), u16(2, nullptr)}), "{0x01, 0x02}"},
        {Composite(PAYLOAD_TYPE_STRUCT, {Composite(PAYLOAD_TYPE_UINT16, {u16(1, nullptr)}), u16(2, nullptr)}),
         "{0x01, 0x02}"},
        {Composite(PAYLOAD_TYPE_STRUCT, {}), "{}"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Written(Element(99, {row.structure}), &Forms(), Simple()),
                  std::string("99 = ") + row.text + "\n");
    }
}

TEST(PayloadFormat, IntegersOfAllWidthsKeepTheirBits) {
    using I64 = std::numeric_limits<std::int64_t>;
    const IMetadata* hex = RecordOf("hex");
    const IMetadata* dec = RecordOf("dec");
    const struct {
        IPayload* payload;
        const char* text;
    } rows[] = {
        {Number<CInt8Payload>(-1), "-1"},
        {Number<CInt8Payload>(-1, hex), "0xFFFF"},
        {Number<CInt8Payload>(65, hex), "0x41"},
        {Number<CInt16Payload>(-32768, hex), "0x8000"},
        {Number<CInt32Payload>(-1, hex), "0xFFFFFFFF"},
        {Number<CInt64Payload>(I64::min()), "-9223372036854775808"},
        {Number<CInt64Payload>(I64::min(), hex), "0x8000000000000000"},
        {Number<CUint8Payload>(255), "0xFF"},
        {Number<CUint8Payload>(65, dec), "65"},
        {Number<CUint16Payload>(0xFFFF, dec), "65535"},
        {Number<CUint32Payload>(5), "0x05"},
        {Number<CUint32Payload>(0xFFFFFFFF, dec), "4294967295"},
        {Number<CUint64Payload>(~0ULL, dec), "18446744073709551615"},
        {Number<CUint64Payload>(~0ULL), "0xFFFFFFFFFFFFFFFF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Written(Element(99, {row.payload}), &Forms(), Simple()),
                  std::string("99 = ") + row.text + "\n");
    }
}

template <typename T>
void StreamsAsItAppends(PayloadTypeEnum type) {
    for (const std::string format :
         {"", "signed_decimal", "unsigned_decimal", "hexadecimal", "Signed_Decimal"}) {
        for (const T value :
             {T{0}, T{5}, T{100}, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()}) {
            std::ostringstream stream;
            stream << "x";
            // A stream writes small integers as characters unless they are widened.
            CKesFormat(format, type)(stream)
                << static_cast<std::conditional_t<sizeof(T) == 1, std::int16_t, T>>(value);
            std::string text = "x";
            CKesFormat(format, type).Append(text, value);
            EXPECT_EQ(text, stream.str()) << type << " " << format;
        }
    }
}

TEST(PayloadFormat, AStreamShowsWhatIsAppended) {
    StreamsAsItAppends<std::int8_t>(PAYLOAD_TYPE_INT8);
    StreamsAsItAppends<std::int16_t>(PAYLOAD_TYPE_INT16);
    StreamsAsItAppends<std::int32_t>(PAYLOAD_TYPE_INT32);
    StreamsAsItAppends<std::int64_t>(PAYLOAD_TYPE_INT64);
    StreamsAsItAppends<std::uint8_t>(PAYLOAD_TYPE_UINT8);
    StreamsAsItAppends<std::uint16_t>(PAYLOAD_TYPE_UINT16);
    StreamsAsItAppends<std::uint32_t>(PAYLOAD_TYPE_UINT32);
    StreamsAsItAppends<std::uint64_t>(PAYLOAD_TYPE_UINT64);
}

TEST(PayloadFormat, TheFormOfAStringIsThatOfItsOwnMetadata) {
    const struct {
        IPayload* payload;
        const char* text;
    } rows[] = {
        {Octets("ab"), "[ 61 62 ]"},
        {Octets("ab", RecordOf("blob")), "[ 61 62 ]"},
        {Octets("\xFF", RecordOf("odd_blob")), "[ FF ]"},
        {Octets("", RecordOf("blob")), "[ ]"},
        {Octets({"\0\2\x5B\1\xAB\xCD", 6}, RecordOf("bd_addr")), "00:02:5B:01:AB:CD"},
        {Octets("", RecordOf("bd_addr")), ""},
        {Octets("ab\"c\n", RecordOf("dev_name")), R"("ab\"c\n")"},
        {Octets({"\\\r\0 \t\x7F\xC3\xA9 # /*", 13}, RecordOf("dev_name")),
         "\"\\\\\\r\\0 \t\x7F\xC3\xA9 # /*\""},
        {Octets("", RecordOf("dev_name")), "\"\""},
        {Octets("\xFF", RecordOf("bd_addr")), "FF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Written(Element(9, {row.payload}), &Forms()), std::string("bd_addr = ") + row.text + "\n");
    }
}

TEST(PayloadFormat, RawFormComesFromTheTagOrTheFirstPayload) {
    const auto words = [] {
        return std::vector{Number<CUint16Payload>(0x1234), Number<CUint16Payload>(0x34)};
    };
    EXPECT_EQ(Written(Element(99, words()), &Forms(), Raw()), "\n99 = % 0x1234 0x34 %\n");
    EXPECT_EQ(Written(Element(99, words()), &Forms()), "\n99 = 0x1234, \\\n 0x34\n");
    EXPECT_EQ(Written(Element(99, words()), &Forms(), Raw(Simple())), "99 = % 0x1234 0x34 %\n");
    EXPECT_EQ(Written(Element(7, words()), &Forms(), Raw()), "rf_channels = % 0x1234 0x34 %\n")
        << "no braces";
    EXPECT_EQ(Written(Element(99, {Octets("a"), Number<CUint64Payload>(1)}), &Forms(), Raw(Simple())),
              "99 = % [ 61 ] 0x01 %\n");
    EXPECT_EQ(Written(Element(99, {}), &Forms(), Raw()), "\n");

    const auto raw = [](std::initializer_list<IPayload*> fields) {
        return Composite(PAYLOAD_TYPE_RAW, fields);
    };
    EXPECT_EQ(
        Written(Element(99, {raw({Number<CUint8Payload>(1), Number<CUint8Payload>(2)})}), &Forms(), Simple()),
        "99 = % 0x01 0x02 %\n");
    EXPECT_EQ(Written(Element(7, {Number<CUint16Payload>(1), raw({Number<CUint8Payload>(2)})}), &Forms()),
              "rf_channels = {0x01, 0x02}\n")
        << "only the first payload counts";

    CKesContext context = Raw();
    std::ostringstream stream;
    CKesWriter writer(&stream, &Forms());
    writer.BeginElement(context);
    writer.WriteUid(1, context);
    CUint8Payload value(1);
    value.Write(writer, context);
    context.SetTag(STR_RAW_MODE, STR_FALSE);
    value.Write(writer, context);
    writer.EndElement(context);
    EXPECT_EQ(stream.str(), "rf_gain = % 0x01 0x01 %\n");
}

}  // namespace
