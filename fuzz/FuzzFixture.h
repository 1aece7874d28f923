#pragma once

// What the fuzz targets share: keys of every kind, and how an input is taken apart.

#include "support/TextReading.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace KesFuzz {

using namespace KesTest;

/// An input: one byte of options, then a text.
struct Input {
    Input(const std::uint8_t* data, std::size_t size) {
        const unsigned options = size == 0 ? 0U : data[0];
        if (size > 1) text.assign(reinterpret_cast<const char*>(data) + 1, size - 1);
        append = (options & 1U) != 0;
        chip = (options & 2U) != 0 ? "sys_arm" : "sys_1_0";
        trace = (options & 4U) != 0;
    }
    CKesContext Context() const {
        CKesContext context;
        context.SetChip(chip);
        context.SetTag(STR_INSERT_MODE, append ? STR_APPEND : STR_OVERWRITE);
        return context;
    }
    std::string text;
    std::string chip;
    bool append;
    bool trace;
};

/// Stops the process, which is how a fuzzer is told of a fault.
[[noreturn]] inline void Fault(const std::string& what, const std::string& first, const std::string& second) {
    // Whole, whatever bytes they hold.
    std::cerr << "FAULT: " << what << "\n--- first\n" << first << "\n--- second\n" << second << std::endl;
    std::abort();
}

inline void AddIntegerKeys(MemoryProvider& made) {
    struct Type {
        const char* name;
        std::int64_t min, max;
    };
    using I64 = std::numeric_limits<std::int64_t>;
    static constexpr Type TYPES[] = {
        {"uint8", 0, 255},
        {"uint16", 0, 65535},
        {"uint32", 0, 0xFFFFFFFF},
        {"uint64", 0, I64::max()},
        {"int8", -128, 127},
        {"int16", -32768, 32767},
        {"int32", -0x80000000LL, 0x7FFFFFFF},
        {"int64", I64::min(), I64::max()},
        {"integer", I64::min(), I64::max()},
    };
    static constexpr std::string_view HEXADECIMAL = "hexadecimal";
    static constexpr std::string_view OTHER = "octal";  // no format of the system; hexadecimal is used
    static constexpr std::pair<const char*, std::string_view> FORMATS[] = {
        {"", ""},        {"_sd", "signed_decimal"}, {"_ud", "unsigned_decimal"}, {"_hex", HEXADECIMAL},
        {"_odd", OTHER},
    };
    std::uint32_t psid = 1;
    for (const Type& type : TYPES) {
        for (const auto& [suffix, format] : FORMATS) {
            // The hexadecimal form of a negative int8 has four digits, which no int8 takes.
            const bool hexadecimal = format == HEXADECIMAL || format == OTHER;
            const std::int64_t min = hexadecimal && type.min == -128 ? 0 : type.min;
            made.Key(psid, std::string(type.name) + suffix, type.name)
                .Format(std::string(format))
                .Range(min, type.max);
            // A short range, in an array.
            made.Key(psid + 100, std::string(type.name) + suffix + "s", type.name)
                .Format(std::string(format))
                .Range(min == 0 ? 0 : -3, 100)
                .Array(psid % 3, 3 + psid % 4);
            ++psid;
        }
    }
}

inline void AddStringKeys(MemoryProvider& made) {
    const std::string octets = "octet_string";
    made.Key(200, "blob", octets).Range(0, 40).Label("Bytes # of any kind");
    made.Key(201, "pair", octets).Range(2, 2);
    made.Key(202, "dev_name", octets)
        .Format("unicode_string")
        .Range(0, 24)
        .Label("N\xC3\xA4me /* of the device");
    made.Key(203, "bd_addr", octets).Format("mac_addr").Range(6, 6);
    made.Key(204, "any_mac", octets).Format("mac_addr").Range(0, 8);
    made.Key(205, "odd", octets).Format("other").Range(0, 8);
    made.Key(206, "blobs", octets).Range(1, 4).Array(1, 3);
    made.Key(207, "names", octets).Format("unicode_string").Range(0, 8).Array(1, 3);
    made.Key(208, "macs", octets).Format("mac_addr").Range(6, 6).Array(1, 2);
}

inline IMetadataDetail::EnumMap Modes() {
    return {{"MODE_A", 0},     {"MODE_FAST", 3}, {"MODE_SAME", 3},
            {"MODE-X", 70000}, {"-minus", -7},   {"_9", 65535}};
}

inline void AddStructKeys(MemoryProvider& made) {
    const Record& retries = made.Field("retries", "uint8").Range(0, 255);
    const Record& level = made.Field("level", "int16").Format("signed_decimal").Range(-100, 100);
    const Record& policy = made.Field("policy", "MODE").Enum(Modes());
    const Record& slots = made.Field("slots", "uint16").Range(0, 65535).Array(1, 3);
    const Record& trims = made.Field("trims", "int8").Format("hexadecimal").Range(0, 127).Array(2, 2);
    const Record& title = made.Field("title", "octet_string").Format("unicode_string").Range(0, 6);
    const Record& bytes = made.Field("bytes", "octet_string").Range(1, 3);
    const Record& address = made.Field("address", "octet_string").Format("mac_addr").Range(6, 6);
    const Record& wide = made.Field("wide", "int64").Format("hexadecimal");
    const Record& plainBits = made.Field("bits", "integer");
    const Record& signedBits = made.Field("signed_bits", "integer").Format("signed_decimal");
    const Record& unsignedBits = made.Field("unsigned_bits", "integer").Format("unsigned_decimal");
    const Record& hexBits = made.Field("hex_bits", "integer").Format("hexadecimal");

    made.Key(300, "link_cfg", "LINK").Struct({{&retries, 8}, {&policy, 8}, {&slots, 48}}).Label("Link");
    made.Key(301, "peers", "PEER").Struct({{&retries, 8}, {&level, 16}}).Array(1, 3);
    made.Key(302, "lists", "LISTS").Struct({{&slots, 48}, {&trims, 16}, {&slots, 48}, {&retries, 8}});
    made.Key(303, "texts", "TEXTS").Struct({{&title, 48}, {&bytes, 24}, {&address, 48}, {&wide, 64}});
    std::vector<std::pair<const Record*, std::int32_t>> fields;
    for (const Record* bits : {&plainBits, &signedBits, &unsignedBits, &hexBits}) {
        for (const std::int32_t width : {1, 7, 8, 13, 32, 40, 64}) fields.emplace_back(bits, width);
    }
    made.Key(304, "flags", "FLAGS").Struct(fields);
    made.Key(305, "flag_list", "FLAGS")
        .Struct({{&plainBits, 4}, {&hexBits, 12}, {&unsignedBits, 3}})
        .Array(1, 2);
    const Record& inner = made.Field("inner", "INNER").Struct({{&retries, 8}, {&slots, 48}});
    const Record& inners = made.Field("inners", "INNER").Struct({{&level, 16}, {&policy, 8}}).Array(1, 2);
    made.Key(306, "nested", "NESTED").Struct({{&inner, 56}, {&inners, 48}, {&retries, 8}});
    made.Key(307, "nested_list", "NESTED").Struct({{&inners, 48}, {&inner, 56}}).Array(1, 2);
    made.Key(308, "one", "ONE").Struct({{&policy, 8}});
}

/// One key at least for each form of value, in all subsystems. Left out are the names that a text cannot
/// carry: a keyword, a subsystem with a number behind it, and a label that ends in a backslash.
inline MemoryProvider& Keys() {
    static MemoryProvider& provider = []() -> MemoryProvider& {
        static MemoryProvider made;
        made.AddSubsystem("curator", "cur");
        made.AddSubsystem("bt", "blue_tooth");
        made.AddSubsystem("bt");
        for (const char* name : {"wlan", "audio", "app", "ble", "gnss"}) made.AddSubsystem(name);
        made.AddChip("sys_1_0", "70");
        made.AddChip("sys_arm", "75");
        AddIntegerKeys(made);
        AddStringKeys(made);
        AddStructKeys(made);
        made.Key(400, "mode", "MODE").Enum(Modes()).Label("Mode");
        made.Key(401, "modes", "MODE").Enum(Modes()).Array(1, 4);
        made.Key(402, "small", "uint8").Range(1, 3);
        made.Key(403, "three", "uint16").Range(3, 3);
        made.Key(410, "rf_offset", "int16").Indexes(1).Label("Offset");
        made.Key(411, "rf_table", "uint8").Range(0, 255).Indexes(2).Array(1, 3);
        made.Key(412, "bt1_gain", "uint8").Range(0, 255).Indexes(1);
        made.Key(413, "stores", "uint8").Range(0, 255);
        made.Key(420, "bt_only", "uint8").Range(0, 255).In(SUBSYSTEM_BT);
        made.Key(421, "differs", "uint8").Range(0, 255).In(SUBSYSTEM_BT);
        made.Key(421, "differs", "int8").Format("signed_decimal").In(SUBSYSTEM_CURATOR);
        made.Key(0, "no_number", "uint8");
        made.Key(0xFFFFFFFF, "last", "uint8").Range(0, 255);
        return made;
    }();
    return provider;
}

}  // namespace KesFuzz
