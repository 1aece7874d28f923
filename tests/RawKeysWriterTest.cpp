// Values that only the raw form can express are written raw, so that a saved text can be read again.

#include "model/CRawKeysWriter.h"
#include "support/TextWriting.h"

#include <gtest/gtest.h>

namespace {

using namespace KesTest;

std::string Saved(CChipConfig& config) {
    CKesContext context = OverwriteContext();
    std::ostringstream stream;
    CKesWriter text(&stream, &TextKeys());
    CRawKeysWriter writer(text, TextKeys());
    EXPECT_TRUE(config.Write(writer, context));
    return stream.str();
}

TEST(RawKeysWriter, RawValuesAreWrittenInTheFormOfTheirKey) {
    const struct {
        std::string given;
        std::string written;  ///< the line of the key in the saved text
        std::string reason;
    } rows[] = {
        {"99 = % 1 [ 01 FF ] %", "99 = % 0x01 [ 01 FF ] %", "a key that the metadata does not know"},
        {"u8 = % 5 %", "u8 = % 0x05 %", "a number given raw"},
        {"u8 = 5", "u8 = 0x05", "a number of the type of its key"},
        {"u8 = % [ 05 ] %", "u8 = % [ 05 ] %", "octets under a number"},
        {"blob = % [ 01 02 ] %", "blob = [ 01 02 ]", "octets that the key takes anyway"},
        {"blob = % [ 01 02 03 04 ] %", "blob = % [ 01 02 03 04 ] %", "more octets than the key takes"},
        {"pair = % [ 01 ] %", "pair = % [ 01 ] %", "fewer octets than the key takes"},
        {"bd_addr = % [ 01 02 ] %", "bd_addr = % [ 01 02 ] %", "octets that are no address"},
        {"dev_name = \"a#\\n\"", "dev_name = \"a#\\n\"", "a text"},
        {"dev_name = [ 61 0A ]", "dev_name = \"a\\n\"", "a text given in octets"},
        {"bd_addr = [ 00 02 5B 01 AB CD ]", "bd_addr = 00:02:5B:01:AB:CD", "an address"},
        {"blob = % [ 01 ] [ 02 ] %", "blob = % [ 01 ] [ 02 ] %", "two strings where one is taken"},
        {"names = {[ 61 ], [ 62 ]}", "names = {\"a\", \"b\"}", "as many texts as the array takes"},
        {"names = % [ 61 ] [ 62 ] [ 63 ] %", "names = % [ 61 ] [ 62 ] [ 63 ] %",
         "more strings than the array takes"},
        {"odd = % [ 01 ] %", "odd = % [ 01 ] %", "octets of a format that no text has"},
    };
    for (const auto& row : rows) {
        CChipConfig config;
        CKesContext context = OverwriteContext();
        const Reading first = Read("file=audio\n" + row.given + "\n", config, context);
        ASSERT_EQ(first.findings, "") << row.reason;
        const std::string saved = Saved(config);
        EXPECT_NE(saved.find("\n" + row.written + "\n"), std::string::npos) << row.reason << "\n" << saved;
        EXPECT_EQ(Outcome(Read(saved)), first.dump) << row.reason << "\n" << saved;
    }
}

TEST(RawKeysWriter, NegativeNumbersOfEightBitsHaveTheDigitsOfEightBits) {
    MemoryProvider provider;
    provider.AddSubsystem("audio");
    const Record& flat = provider.Key(1, "flat", "int8").Range(-128, 127).Format("hexadecimal");
    const Record& plain = provider.Key(2, "plain", "int8").Range(-128, 127);
    provider.Key(3, "both", "").Struct({{&flat, 8}, {&plain, 8}});
    CChipConfig config;
    CKesContext context = OverwriteContext();
    ASSERT_EQ(
        Read("file=audio\nflat = -1\nplain = -1\nboth = {-128, -1}\n", config, context, provider).findings,
        "");
    std::ostringstream stream;
    CKesWriter text(&stream, &provider);
    CRawKeysWriter writer(text, provider);
    context.SetTag(STR_TXT_SIMPLE_MODE, STR_TRUE);
    EXPECT_TRUE(config.Write(writer, context));
    EXPECT_FALSE(writer.Fault().has_value());
    EXPECT_NE(stream.str().find("flat = 0xFF\nplain = -1\nboth = {0x80, -1}\n"), std::string::npos)
        << stream.str();
}

TEST(RawKeysWriter, AValueThatCannotBeReadAgainIsNamed) {
    const auto composite = [] {
        auto* value = new CComplexPayload(PAYLOAD_TYPE_STRUCT);
        value->AddField(new CUint8Payload(1));
        return value;
    };
    const struct {
        CElement* element;
        std::string fault;
    } rows[] = {
        {new CIndexedElement(99, "", {2147483648U}, {new CUint64Payload(1)}, false),
         "audio, eeprom, store 1: key 99.2147483648 has an index above 2147483647, which texts cannot name"},
        {new CIndexedElement(99, "", {2147483647U}, {new CUint64Payload(1)}, false), ""},
        {new CIndexedElement(99, "", {}, {composite()}, false),
         "audio, eeprom, store 1: key 99 has a raw value with braces, raw values are a list of numbers and "
         "octets"},
        {new CIndexedElement(99, "", {}, {new CEnumPayload("ON", 1)}, false),
         "audio, eeprom, store 1: key 99 has a raw value with a name, raw values are a list of numbers and "
         "octets"},
        {new CIndexedElement(99, "", {}, {new CInt16Payload(-1)}, false),
         "audio, eeprom, store 1: key 99 has a raw value below 0, raw numbers have no sign"},
        {new CIndexedElement(99, "", {}, {new CInt16Payload(1)}, false), ""},
    };
    for (const auto& row : rows) {
        CChipConfig config;
        CKesContext context = Place(SUBSYSTEM_AUDIO, IStoreManager::DEVICE_EEPROM, 1);
        config.OnElementFound(row.element, context);
        std::ostringstream stream;
        CKesWriter text(&stream, &TextKeys());
        CRawKeysWriter writer(text, TextKeys());
        config.Write(writer, context);
        EXPECT_EQ(writer.Fault().value_or(""),
                  row.fault.empty() ? "" : row.fault + "; keep it in chunk files or remove it");
    }
}

}  // namespace
