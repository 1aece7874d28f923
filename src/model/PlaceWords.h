#pragma once

#include <string>

namespace VemoKesConfigTools {

class CKesContext;

/// The words for a place in messages: "bt, eeprom, store 3". A number stands for what has no name.
std::string DescribePlace(const CKesContext& place);

}  // namespace VemoKesConfigTools
