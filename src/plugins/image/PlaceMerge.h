#pragma once

#include "plugins/binary/Places.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// Whether both are the same place, regardless of their order in a list.
bool SamePlace(const BinaryPlace& left, const BinaryPlace& right);

/// Merges given places into held ones: keys of the given places replace the same keys, at the position of the
/// first occurrence; all others stay. Throws `Refusal`.
std::vector<EncodedPlace> MergePlaces(std::vector<EncodedPlace> held, const std::vector<EncodedPlace>& given);

/// Throws `Refusal` for a change that one-time-programmable memory cannot make: every held key must stay,
/// with values of the same types and sizes in which no bit is cleared. `store` is used in the message.
void CheckOnlySetsBits(const std::vector<EncodedPlace>& held, const std::vector<EncodedPlace>& wanted,
                       const std::string& store);

}  // namespace VemoKesConfigTools
