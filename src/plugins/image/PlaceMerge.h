#pragma once

#include "plugins/binary/Places.h"

#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// Whether both are the same place, wherever it stands in a list.
bool SamePlace(const BinaryPlace& left, const BinaryPlace& right);

/// What is held with what is given on top: keys of the given places replace equal keys, at the position of
/// the first; all others stay. Throws `Refusal`.
std::vector<EncodedPlace> MergePlaces(std::vector<EncodedPlace> held, const std::vector<EncodedPlace>& given);

/// Refuses what one-time-programmable memory cannot do: every key that is held must stay, with values of the
/// same form, of which no bit is cleared. `store` is what the message names.
void CheckOnlySetsBits(const std::vector<EncodedPlace>& held, const std::vector<EncodedPlace>& wanted,
                       const std::string& store);

}  // namespace VemoKesConfigTools
