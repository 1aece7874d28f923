#pragma once

#include "model/IMetadataDetail.h"
#include "model/IPayload.h"

#include <cstddef>

namespace VemoKesConfigTools {

class CStructField;
class IMetadata;

// The rules that a text is held against, for values that are no text. All throw `Refusal` with
// `STR_PACKINT_ERROR` and a cause that reads on behind the name of the key.

/// A number, string or enumerator of the right type, range and length; makes it use the metadata as a text
/// reader does. `field` is null for what is no field of a struct.
void CheckLeaf(IPayload& payload, const IMetadata& metadata, const CStructField* field);
/// How many values a key may have.
void CheckCount(std::size_t count, const IMetadata& metadata);
/// The type of an array that is a field of a struct.
PayloadTypeEnum ArrayTypeOf(const IMetadata& metadata);
/// An array that is a field of a struct: the type of its items, and how many they are.
void CheckArray(PayloadTypeEnum type, std::size_t count, const IMetadata& metadata);
/// A struct: gives its fields, which are as many as the values.
const IMetadataDetail::FieldList& CheckStruct(PayloadTypeEnum type, std::size_t count,
                                              const IMetadata& metadata);

}  // namespace VemoKesConfigTools
