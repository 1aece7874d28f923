#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// A JSON value that knows where in its text it stands, so that a wrong value can be pointed at.
struct JsonNode {
    enum class Kind { Null, Bool, Integer, Number, String, Array, Object };

    Kind kind = Kind::Null;
    std::size_t offset = 0;  ///< of its first character
    bool boolean = false;
    std::int64_t integer = 0;  ///< for `Integer`; what does not fit is a `Number`
    std::string text;
    std::vector<JsonNode> items;
    struct Member;
    std::vector<Member> members;  ///< in the order of the text

    /// The member of this name, null when there is none.
    const JsonNode* Find(std::string_view name) const;
};

struct JsonNode::Member {
    std::string name;
    std::size_t offset = 0;  ///< of the name
    JsonNode value;
};

/// Parses a text as RFC 8259 has it. False with the place and the words of the first fault; a member that an
/// object has twice is one, and so is nesting beyond any need.
bool ParseJson(std::string_view text, JsonNode& root, std::size_t& faultOffset, std::string& fault);

}  // namespace VemoKesConfigTools::metadb
