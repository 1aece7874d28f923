#pragma once

#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"

#include <cstdint>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// One change of one key in one place.
struct TextChange {
    TextPlace place;
    std::uint32_t psid = 0;
    std::vector<std::uint32_t> indices;
    /// Name or number with its indexes, as a new line is to have it.
    std::string key;
    /// What is to stand behind "=". Not used when the key is taken out.
    std::string value;
    bool isRemoval = false;
    /// How a new place is to name its subsystem, and its device, which is empty where the place is to be a
    /// "file" line.
    std::string subsystemWord;
    std::string deviceWord;
};

/// The text after the changes, which are of different keys. All other characters stay as they are:
///
/// - A changed value takes the place of the characters of the old one, in the line that counts. So does a
///   value of a key whose last line was refused: that mends the line.
/// - A new key is a line behind the last line of its place; a new place is made at the end of the text.
/// - A removed key loses every line that gives it a value in its place, each with the comment behind it.
///
/// That the result reads as it should is for the caller to prove: a value may hold anything.
std::string EditText(const CTextIndex& index, const std::vector<TextChange>& changes);

}  // namespace VemoKesConfigTools
