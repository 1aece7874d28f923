#pragma once

#include "metadb/JsonSource.h"
#include "metadb/JsonTree.h"

#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::metadb {

/// Reads values from the tree of a source and collects their faults.
class SourceNodes {
public:
    SourceNodes(std::string_view text, std::uint32_t file, std::vector<SourceFault>& faults);

    void Fault(std::size_t offset, std::string text);
    SourcePlace PlaceOf(std::size_t offset) const;

    /// Whether the node is of this kind; adds a fault if not.
    bool Expect(const JsonNode& node, JsonNode::Kind kind, std::string_view what);
    /// Adds a fault for every member whose name is not in the list.
    void AllowOnly(const JsonNode& object, std::span<const std::string_view> names);
    void AllowOnly(const JsonNode& object, std::initializer_list<std::string_view> names) {
        AllowOnly(object, std::span(names.begin(), names.size()));
    }
    /// A mandatory member of this kind; null, with a fault, if it is missing or of another kind.
    const JsonNode* Required(const JsonNode& object, std::string_view name, JsonNode::Kind kind);
    /// An optional member of this kind; null if it is missing, or, with a fault, if it is of another kind.
    const JsonNode* Optional(const JsonNode& object, std::string_view name, JsonNode::Kind kind);

    std::string Text(const JsonNode& object, std::string_view name);
    std::string RequiredText(const JsonNode& object, std::string_view name);
    bool Flag(const JsonNode& object, std::string_view name);
    /// A number within the bounds; `otherwise` if it is missing, or, with a fault, if it is invalid.
    std::int64_t Number(const JsonNode& object, std::string_view name, std::int64_t least, std::int64_t most,
                        std::int64_t otherwise);
    std::int64_t RequiredNumber(const JsonNode& object, std::string_view name, std::int64_t least,
                                std::int64_t most);
    /// Calls `take` for each item of a list of objects.
    void EachObject(const JsonNode* list, std::string_view what,
                    const std::function<void(const JsonNode&)>& take);
    /// The members of an object of 32-bit numbers.
    NamedValues Values(const JsonNode& object, std::int64_t least);

private:
    std::int64_t InBounds(const JsonNode& node, std::string_view name, std::int64_t least, std::int64_t most,
                          std::int64_t otherwise);

    std::uint32_t mFile;
    std::vector<std::size_t> mLineStarts;
    std::vector<SourceFault>& mFaults;
};

/// Whether the text matches "[A-Za-z_][A-Za-z0-9_]*"; with `dash`, "-" is also allowed after the first
/// character.
bool IsName(std::string_view text, bool dash = false);

}  // namespace VemoKesConfigTools::metadb
