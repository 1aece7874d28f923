#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// A JSON value with its position in the text, so that messages can point at a wrong value.
struct JsonNode {
    enum class Kind { Null, Bool, Integer, Number, String, Array, Object };

    Kind kind = Kind::Null;
    std::size_t offset = 0;  ///< of its first character
    bool boolean = false;
    std::int64_t integer = 0;  ///< for `Integer`; a number that does not fit is a `Number`
    std::string text;
    std::vector<JsonNode> items;
    struct Member;
    std::vector<Member> members;  ///< in the order of the text

    /// The member with this name; null if there is none.
    const JsonNode* Find(std::string_view name) const;
};

struct JsonNode::Member {
    std::string name;
    std::size_t offset = 0;  ///< of the name
    JsonNode value;
};

/// Parses a JSON text (RFC 8259). On failure returns false, with the position and description of the first
/// fault. A duplicate member of an object is a fault, and so is nesting far deeper than a source needs.
bool ParseJson(std::string_view text, JsonNode& root, std::size_t& faultOffset, std::string& fault);

}  // namespace VemoKesConfigTools::metadb
