#pragma once

#include "model/IWritable.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// The types of payloads. The numbers are part of the plug-in contract; they differ from `SimpleElementTypes`
/// of the host API.
enum PayloadTypeEnum : std::int32_t {
    PAYLOAD_TYPE_INT8 = 0,
    PAYLOAD_TYPE_INT16 = 1,
    PAYLOAD_TYPE_INT32 = 2,
    PAYLOAD_TYPE_INT64 = 3,
    PAYLOAD_TYPE_UINT8 = 4,
    PAYLOAD_TYPE_UINT16 = 5,
    PAYLOAD_TYPE_UINT32 = 6,
    PAYLOAD_TYPE_UINT64 = 7,
    PAYLOAD_TYPE_STRING = 8,
    PAYLOAD_TYPE_STRUCT = 9,
    PAYLOAD_TYPE_ENUM = 10,
    PAYLOAD_TYPE_RAW = 11
};

/// One typed value of an element. It belongs to the element or composite that it was handed to. A payload of
/// type 0 to 8 or 10 is an object of the class of that type. Slot order is contract.
class IPayload : public IWritable {
public:
    /// Equal type and value.
    virtual bool operator==(const IPayload& other) const = 0;
    virtual PayloadTypeEnum Type() const = 0;
    /// Size of the value in bytes; of a composite, the sum over its fields.
    virtual std::uint32_t Length() const = 0;
    /// The value itself: the integer, or for a string the `std::string` object.
    virtual const void* RawData() const = 0;
    /// The value as text: numbers in decimal, strings as they are, enumerators by name, composites in braces.
    virtual std::string ToString() const = 0;
    /// Copies the value's bytes, numbers with the low byte first, and gives their count; 0 and nothing copied
    /// when `size` is too small.
    virtual std::uint32_t WriteToMem(void* memory, std::uint32_t size) const = 0;
};

}  // namespace VemoKesConfigTools
