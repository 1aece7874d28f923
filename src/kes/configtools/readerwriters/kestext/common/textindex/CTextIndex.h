#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class IMetadataProvider;

/// Where keys lie: numbers of subsystem type, device and store; -1 where nothing is known.
struct TextPlace {
    std::int32_t subsystem = -1;
    std::int32_t device = -1;
    std::int32_t store = -1;
    auto operator<=>(const TextPlace&) const = default;
};

/// A piece of a text in bytes, from its first to one past its last.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool IsEmpty() const { return begin == end; }
};

/// One logical line of a text: with its continuation lines and the comments inside it.
struct TextLine {
    enum class Effect : std::uint8_t {
        None,     ///< a keyword line, or a line that failed
        Sets,     ///< gives a key a value, also when something wrong follows it
        Removes,  ///< a key without a value
        Fails     ///< a key whose value is refused
    };

    TextRange all;             ///< from the first character that is no blank, past the end of the line
    TextRange key;             ///< name or number with its indexes, without a prefix; empty for other lines
    TextRange value;           ///< from its first character to its last; empty where there is none
    std::uint32_t number = 0;  ///< of the line that `all` begins in, from 1
    TextPlace place;           ///< of the key, or where the keys behind a keyword line lie
    std::uint32_t psid = 0;
    std::vector<std::uint32_t> indices;
    std::int32_t error = 0;  ///< the code of what is wrong with the line, 0 for a good one
    Effect effect = Effect::None;
    bool isPrefixed = false;  ///< names its place in front of the key
    /// Does not lie where it stands, but where the line before lay: a number with indexes that the metadata
    /// does not know.
    bool isStray = false;
};

/// What stands where in a configuration text, as the reader of texts sees it: its parser makes the index, so
/// that no second grammar can differ from it. Blank lines and lines of comments alone are not in it. Made at
/// the cost of one reading; what is wrong with the text is reported as in any reading.
class CTextIndex {
public:
    /// Reads the text as one of the system of this label. The provider is used only meanwhile.
    CTextIndex(std::string text, IMetadataProvider& provider, std::string_view systemLabel);
    /// The same, on the metadata of a database file. Without the plug-in for databases no line is found.
    CTextIndex(std::string text, const std::string& database, std::string_view systemLabel);

    const std::string& Text() const { return mText; }
    /// The logical lines in their order, up to the one that ends the reading, if any does.
    const std::vector<TextLine>& Lines() const { return mLines; }
    /// The characters of a piece.
    std::string_view Piece(const TextRange& range) const {
        return std::string_view(mText).substr(range.begin, range.end - range.begin);
    }

private:
    void Read(IMetadataProvider& provider, std::string_view systemLabel);
    void MapToBytes();

    std::string mText;
    std::vector<TextLine> mLines;
};

}  // namespace VemoKesConfigTools
