#include "tool/keys/KeyText.h"

#include "tool/keys/KeyJson.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"
#include "util/misc/ignorecase.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace kes::tool {

namespace {

constexpr const char* FORMAT_HEXADECIMAL = "hexadecimal";
constexpr const char* FORMAT_UNSIGNED = "unsigned_decimal";
constexpr const char* FORMAT_UNICODE = "unicode_string";
constexpr const char* FORMAT_MAC = "mac_addr";

const char* SimpleTypeName(api::SimpleElementTypes type) {
    using enum api::SimpleElementTypes;
    switch (type) {
        case Int8:
            return "int8";
        case Int16:
            return "int16";
        case Int32:
            return "int32";
        case Int64:
            return "int64";
        case UInt8:
            return "uint8";
        case UInt16:
            return "uint16";
        case UInt32:
            return "uint32";
        case UInt64:
            return "uint64";
        case String:
            return "octets";
        case None:
            break;
    }
    return "unknown";
}

std::string Hex(std::uint64_t value, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", digits, static_cast<unsigned long long>(value));
    return text;
}

/// The allowed value that is nearest to zero.
std::string ExampleNumber(std::int64_t min, std::int64_t max, const std::string& format) {
    const std::int64_t value = std::min(std::max<std::int64_t>(0, min), max);
    if (format == FORMAT_HEXADECIMAL && value >= 0) return Hex(static_cast<std::uint64_t>(value), 2);
    return std::to_string(value);
}

/// A MAC address ends at a blank only, so among other values it has to stand in brackets.
std::string ExampleOctets(const api::Metadata& key, const std::string& format, bool alone) {
    const bool asMac = format == FORMAT_MAC && alone;
    constexpr std::int64_t ENOUGH = 6;
    const auto length =
        static_cast<std::size_t>(std::max(key.Min(), std::min(std::max<std::int64_t>(0, key.Max()), ENOUGH)));
    if (format == FORMAT_UNICODE) return "\"" + std::string(length, 'a') + "\"";
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        char octet[4];
        std::snprintf(octet, sizeof octet, "%02X", static_cast<unsigned>(i & 0xFFU));
        if (i != 0) text += asMac ? ":" : " ";
        text += octet;
    }
    return asMac && length != 0 ? text : "[" + text + "]";
}

std::string ExampleValue(const api::Metadata& key, bool alone);

std::string ExampleItem(const api::Metadata& key, bool alone) {
    const std::string format = Text(key.Format());
    const std::shared_ptr<api::MetadataDetails>& details = key.Details();
    if (details && details->Enums()) return Text(details->Enums()->begin()->first);
    if (details && details->StructFields()) {
        std::string text = "{";
        for (const auto& field : details->StructFields()) {
            if (text.size() > 1) text += ", ";
            text += ExampleValue(*field->MetaData(), /*alone=*/false);
        }
        return text + "}";
    }
    if (key.SimpleType() == api::SimpleElementTypes::String) return ExampleOctets(key, format, alone);
    return ExampleNumber(key.Min(), key.Max(), format);
}

std::string ExampleValue(const api::Metadata& key, bool alone) {
    std::string item = ExampleItem(key, alone && !key.IsArray());
    if (!key.IsArray()) return item;
    std::string text = "{" + item;
    for (std::int32_t i = 1; i < key.ArrayMinLength(); ++i) text += ", " + item;
    return text + "}";
}

}  // namespace

std::vector<std::shared_ptr<api::Subsystem>> SubsystemsNamed(Session& session, const api::Chip& chip,
                                                             const std::string& name) {
    std::vector<std::shared_ptr<api::Subsystem>> all = session.Subsystems(chip);
    if (name.empty()) return all;
    std::vector<std::string> names;
    std::vector<std::string> words;
    for (const auto& subsystem : all) {
        if (VemoKesConfigTools::EqualsIgnoringCase(name, Text(subsystem->Name())) ||
            VemoKesConfigTools::EqualsIgnoringCase(name, Text(subsystem->Alias()))) {
            return {subsystem};
        }
        names.push_back(Text(subsystem->Name()));
        for (const auto* word : {&subsystem->Name(), &subsystem->Alias()}) {
            if (!word->IsNullOrEmpty()) words.push_back(Text(*word));
        }
    }
    const std::string near = DidYouMean(name, words);
    std::string list;
    for (const std::string& known : names) list += (list.empty() ? "" : ", ") + known;
    throw Failure(EXIT_USAGE, Text(chip.SystemVersionLabel()) + " has no subsystem \"" + name + "\"" +
                                  (near.empty() ? "" : ", " + near) + "\nit has: " + list);
}

std::string KeyNumber(std::uint32_t number) { return Hex(number, 4); }

std::string KeyNumber(const api::Metadata& key) { return KeyNumber(static_cast<std::uint32_t>(key.Psid())); }

std::string IndexSuffix(const api::Metadata& key) {
    std::string suffix;
    for (const auto& index : key.TableIndexes()) suffix += ".<" + Text(index->Name()) + ">";
    return suffix;
}

std::string TypeWord(const api::Metadata& key) {
    if (key.MetadataType() != api::MetadataTypes::Simple && key.Details()) {
        return key.MetadataType() == api::MetadataTypes::Enum ? "enum" : "struct";
    }
    if (key.SimpleType() != api::SimpleElementTypes::String) return SimpleTypeName(key.SimpleType());
    const std::string format = Text(key.Format());
    return format == FORMAT_UNICODE ? "text" : format == FORMAT_MAC ? "MAC address" : "octets";
}

std::string TypeText(const api::Metadata& key) {
    Json record;
    AddType(record, key);
    return TypeText(record);
}

std::string TypeText(const Json& record) {
    std::string text = record.at("type").get<std::string>();
    if (const auto name = record.find("type_name"); name != record.end()) {
        text += " " + name->get<std::string>();
    }
    const auto array = record.find("array");
    if (array == record.end()) return text;
    const std::string least = array->at("minimum").dump();
    const std::string most = array->at("maximum").dump();
    return text + " [" + (least == most ? most : least + ".." + most) + "]";
}

bool IsBitField(const api::StructField& field) {
    const api::Metadata& record = *field.MetaData();
    return record.MetadataType() == api::MetadataTypes::Simple &&
           record.SimpleType() == api::SimpleElementTypes::Int64 && field.ElemBitWidth() < 64;
}

std::pair<std::int64_t, std::int64_t> FieldRange(const api::StructField& field) {
    const api::Metadata& record = *field.MetaData();
    if (!IsBitField(field)) return {record.Min(), record.Max()};
    const std::string format = Text(record.Format());
    const std::int32_t width = field.ElemBitWidth();
    const bool isUnsigned = format == FORMAT_HEXADECIMAL || format == FORMAT_UNSIGNED;
    // One bit is 0 or 1, whatever its sign.
    const std::int32_t valueBits = isUnsigned || width <= 1 ? std::max(width, 1) : width - 1;
    const auto highest =
        static_cast<std::int64_t>((std::uint64_t{1} << static_cast<unsigned>(valueBits)) - 1);
    const std::int64_t lowest = isUnsigned || width <= 1 ? 0 : -highest - 1;
    return {std::max(record.Min(), lowest), std::min(record.Max(), highest)};
}

std::string ExampleLine(const api::Metadata& key) {
    std::string line = Text(key.Name());
    for (const auto& index : key.TableIndexes()) line += "." + std::to_string(index->Min());
    return line + " = " + ExampleValue(key, /*alone=*/true);
}

}  // namespace kes::tool
