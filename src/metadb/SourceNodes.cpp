#include "metadb/SourceNodes.h"

#include <algorithm>
#include <limits>

namespace VemoKesConfigTools::metadb {

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string_view NameOf(JsonNode::Kind kind) {
    switch (kind) {
        case JsonNode::Kind::Null:
            return "null";
        case JsonNode::Kind::Bool:
            return "true or false";
        case JsonNode::Kind::Integer:
            return "a 64-bit integer";
        case JsonNode::Kind::Number:
            return "a number";
        case JsonNode::Kind::String:
            return "a string";
        case JsonNode::Kind::Array:
            return "an array";
        case JsonNode::Kind::Object:
            return "an object";
    }
    return "nothing";
}

}  // namespace

SourceNodes::SourceNodes(std::string_view text, std::uint32_t file, std::vector<SourceFault>& faults)
    : mFile(file), mLineStarts{0}, mFaults(faults) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        mLineStarts.push_back(at + 1);
    }
}

void SourceNodes::Fault(std::size_t offset, std::string text) {
    mFaults.push_back({PlaceOf(offset), std::move(text)});
}

SourcePlace SourceNodes::PlaceOf(std::size_t offset) const {
    const auto next = std::ranges::upper_bound(mLineStarts, offset);
    const auto line = static_cast<std::uint32_t>(next - mLineStarts.begin());
    return {mFile, line, static_cast<std::uint32_t>(offset - *std::prev(next) + 1)};
}

bool SourceNodes::Expect(const JsonNode& node, JsonNode::Kind kind, std::string_view what) {
    if (node.kind == kind) return true;
    Fault(node.offset, std::string(what) + " must be " + std::string(NameOf(kind)));
    return false;
}

void SourceNodes::AllowOnly(const JsonNode& object, std::span<const std::string_view> names) {
    for (const JsonNode::Member& member : object.members) {
        if (std::ranges::find(names, member.name) != names.end()) continue;
        std::string list;
        for (const std::string_view name : names) list += (list.empty() ? "" : ", ") + std::string(name);
        Fault(member.offset, "unknown member " + Quoted(member.name) + ", must be one of " + list);
    }
}

const JsonNode* SourceNodes::Required(const JsonNode& object, std::string_view name, JsonNode::Kind kind) {
    const JsonNode* node = object.Find(name);
    if (node == nullptr) {
        Fault(object.offset, "member " + Quoted(name) + " is missing");
        return nullptr;
    }
    return Expect(*node, kind, Quoted(name)) ? node : nullptr;
}

const JsonNode* SourceNodes::Optional(const JsonNode& object, std::string_view name, JsonNode::Kind kind) {
    const JsonNode* node = object.Find(name);
    return node != nullptr && Expect(*node, kind, Quoted(name)) ? node : nullptr;
}

std::string SourceNodes::Text(const JsonNode& object, std::string_view name) {
    const JsonNode* node = Optional(object, name, JsonNode::Kind::String);
    if (node == nullptr) return {};
    // The host API ends a text at its first NUL.
    if (node->text.find('\0') != std::string::npos)
        Fault(node->offset, Quoted(name) + " contains a NUL character");
    return node->text;
}

std::string SourceNodes::RequiredText(const JsonNode& object, std::string_view name) {
    const JsonNode* node = Required(object, name, JsonNode::Kind::String);
    if (node == nullptr) return {};
    if (node->text.empty()) Fault(node->offset, Quoted(name) + " must not be empty");
    return Text(object, name);
}

bool SourceNodes::Flag(const JsonNode& object, std::string_view name) {
    const JsonNode* node = Optional(object, name, JsonNode::Kind::Bool);
    return node != nullptr && node->boolean;
}

std::int64_t SourceNodes::Number(const JsonNode& object, std::string_view name, std::int64_t least,
                                 std::int64_t most, std::int64_t otherwise) {
    const JsonNode* node = Optional(object, name, JsonNode::Kind::Integer);
    return node == nullptr ? otherwise : InBounds(*node, Quoted(name), least, most, otherwise);
}

std::int64_t SourceNodes::RequiredNumber(const JsonNode& object, std::string_view name, std::int64_t least,
                                         std::int64_t most) {
    const JsonNode* node = Required(object, name, JsonNode::Kind::Integer);
    return node == nullptr ? least : InBounds(*node, Quoted(name), least, most, least);
}

std::int64_t SourceNodes::InBounds(const JsonNode& node, std::string_view name, std::int64_t least,
                                   std::int64_t most, std::int64_t otherwise) {
    if (node.integer >= least && node.integer <= most) return node.integer;
    Fault(node.offset, std::string(name) + " must be between " + std::to_string(least) + " and " +
                           std::to_string(most) + ", " + std::to_string(node.integer) + " found");
    return otherwise;
}

void SourceNodes::EachObject(const JsonNode* list, std::string_view what,
                             const std::function<void(const JsonNode&)>& take) {
    if (list == nullptr) return;
    for (const JsonNode& item : list->items) {
        if (Expect(item, JsonNode::Kind::Object, what)) take(item);
    }
}

NamedValues SourceNodes::Values(const JsonNode& object, std::int64_t least) {
    NamedValues values;
    for (const JsonNode::Member& member : object.members) {
        if (!Expect(member.value, JsonNode::Kind::Integer, Quoted(member.name))) continue;
        const std::int64_t value =
            InBounds(member.value, Quoted(member.name), least, std::numeric_limits<std::int32_t>::max(), 0);
        values.emplace_back(member.name, static_cast<std::int32_t>(value));
    }
    return values;
}

bool IsName(std::string_view text, bool dash) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto isRest = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || (dash && c == '-'); };
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, isRest);
}

}  // namespace VemoKesConfigTools::metadb
