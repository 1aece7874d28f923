#pragma once

#include "messages/Export.h"
#include "model/IPayload.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class CStructField;
class IMetadata;

// What the metadata allows, for readers and writers of every format.

/// The payload type of an integer key of this type name; none for a type that is no integer.
KES_API std::optional<PayloadTypeEnum> IntegerTypeOf(std::string_view typeName);

/// How a bit field of a struct is kept, and the values that it has room for. One bit is 0 or 1 whatever its
/// sign.
struct BitField {
    PayloadTypeEnum type;
    std::int64_t min;
    std::int64_t max;
};
KES_API BitField BitFieldOf(const CStructField& field);

/// Whether this is a byte string; an array of them within a struct has the same type.
KES_API bool IsString(const IPayload& payload);

/// Whether these values of a key were given raw: they do not have the form that its metadata asks for.
KES_API bool WasGivenRaw(const std::vector<const IPayload*>& payloads, const IMetadata& metadata);

}  // namespace VemoKesConfigTools
