#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kes::tool {

/// How many bytes the character at the beginning of a text has, at least 1, and whether a terminal shows it
/// and does nothing else: it is no control character, none that changes the direction of writing, and good
/// UTF-8.
struct Character {
    std::size_t size;
    bool printable;
};
Character FirstCharacter(std::string_view text);

/// The text as people may see it: what is not printable becomes "\n", "\t" or the like, or each of its bytes
/// "\033". For all that comes from elsewhere: names of files, texts, databases.
std::string Printable(std::string_view text);
/// The same, with line ends and tabs kept.
std::string PrintableLines(std::string_view text);
/// What other programs may want as it is, values and contents of files: quoted only where standard output is
/// a terminal.
std::string ForOutput(const std::string& text);

}  // namespace kes::tool
