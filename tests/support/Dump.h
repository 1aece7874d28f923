#pragma once

// A configuration as one line of text.

#include "model/CChipConfig.h"
#include "model/CIndexedElement.h"
#include "model/CStoreInfo.h"
#include "model/CSubsystemConfig.h"
#include "model/Payloads.h"

#include <string>

namespace KesTest {

using namespace VemoKesConfigTools;

template <typename T>
std::string DumpNumber(const IPayload& payload) {
    return std::to_string(*static_cast<const T*>(payload.RawData()));
}

inline std::string DumpBytes(const std::string& bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        if (c >= ' ' && c <= '~') {
            text += c;
        } else {
            static constexpr char DIGITS[] = "0123456789ABCDEF";
            const auto byte = static_cast<unsigned char>(c);
            text.append("<").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 0xFU]).append(">");
        }
    }
    return text + "\"";
}

/// `TYPE:VALUE`; a string in quotes; a composite as `TYPE{FIELD,FIELD}`.
inline std::string DumpPayload(const IPayload& payload) {
    static constexpr const char* TYPES[] = {"i8",  "i16", "i32", "i64",    "u8",   "u16",
                                            "u32", "u64", "str", "struct", "enum", "raw"};
    std::string text = TYPES[payload.Type()];
    if (const auto* composite = dynamic_cast<const CComplexPayload*>(&payload)) {
        text += "{";
        for (const IPayload* field : composite->GetFields()) {
            if (text.back() != '{') text += ",";
            text += DumpPayload(*field);
        }
        return text + "}";
    }
    switch (payload.Type()) {
        case PAYLOAD_TYPE_INT8:
            return text + ":" + DumpNumber<std::int8_t>(payload);
        case PAYLOAD_TYPE_INT16:
            return text + ":" + DumpNumber<std::int16_t>(payload);
        case PAYLOAD_TYPE_INT32:
            return text + ":" + DumpNumber<std::int32_t>(payload);
        case PAYLOAD_TYPE_INT64:
            return text + ":" + DumpNumber<std::int64_t>(payload);
        case PAYLOAD_TYPE_UINT8:
            return text + ":" + DumpNumber<std::uint8_t>(payload);
        case PAYLOAD_TYPE_UINT16:
            return text + ":" + DumpNumber<std::uint16_t>(payload);
        case PAYLOAD_TYPE_UINT32:
            return text + ":" + DumpNumber<std::uint32_t>(payload);
        case PAYLOAD_TYPE_UINT64:
            return text + ":" + DumpNumber<std::uint64_t>(payload);
        case PAYLOAD_TYPE_ENUM:
            return static_cast<const CEnumPayload&>(payload).GetName() + "(" +
                   DumpNumber<std::int32_t>(payload) + ")";
        default:
            return DumpBytes(*static_cast<const std::string*>(payload.RawData()));
    }
}

/// `KEY NAME=PAYLOAD PAYLOAD`
inline std::string DumpElement(const CElement& element) {
    std::string text = element.KeyString();
    if (const auto* named = dynamic_cast<const CIndexedElement*>(&element); named && !named->Name().empty()) {
        text += " " + named->Name();
    }
    text += "=";
    for (const IPayload* payload : element.Payloads()) {
        if (text.back() != '=') text += " ";
        text += DumpPayload(*payload);
    }
    return text;
}

inline std::string DumpElements(const CSubsystemConfig& place) {
    std::string text;
    for (const CElement* element : place.Elements()) {
        if (!text.empty()) text += "; ";
        text += DumpElement(*element);
    }
    return text;
}

/// `[SUBSYSTEM/DEVICE/STORE ELEMENTS]` for each place, with `@LAYER` after the store if it has one.
inline std::string Dump(const CChipConfig& config) {
    std::string text;
    for (const auto& [key, place] : config.Subsystems()) {
        const CKesContext& at = place->Place();
        if (!text.empty()) text += " ";
        text += "[" + std::to_string(at.SubsystemType()) + "/" + std::to_string(at.Device()) + "/" +
                std::to_string(at.Store());
        if (at.LayerNumber()) text += "@" + std::to_string(*at.LayerNumber());
        const std::string elements = DumpElements(*place);
        text += (elements.empty() ? "" : " ") + elements + "]";
    }
    return text;
}

/// `DEVICE/STORE#ORDER` for each store.
inline std::string DumpStores(const std::list<CStoreInfo*>& stores) {
    std::string text;
    for (const CStoreInfo* store : stores) {
        if (!text.empty()) text += " ";
        text += std::to_string(store->DeviceId()) + "/" + std::to_string(store->StoreId()) + "#" +
                std::to_string(store->Order());
    }
    return text;
}

}  // namespace KesTest
