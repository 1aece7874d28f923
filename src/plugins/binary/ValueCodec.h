#pragma once

#include "plugins/binary/Bytes.h"

#include <memory>
#include <vector>

namespace VemoKesConfigTools {

class IMetadata;
class IPayload;

/// The values of one key.
using PayloadList = std::vector<std::unique_ptr<IPayload>>;

/// Appends the values of a key: their count, then each as a tree. The record may be one that is not valid.
/// Throws `Refusal` for a payload of a class that has no form here.
void AppendValues(ByteWriter& bytes, const std::vector<const IPayload*>& payloads, const IMetadata& metadata);

/// Reads the values of a key as they are. Throws `Refusal`.
PayloadList ReadValues(ByteReader& bytes);

/// Reads the values of a key that the metadata knows: but for those that were given raw, they must have the
/// form, count and range that it asks for, and use it. Throws `Refusal`.
PayloadList ReadValues(ByteReader& bytes, const IMetadata& metadata);

}  // namespace VemoKesConfigTools
