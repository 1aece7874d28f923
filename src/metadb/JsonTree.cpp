#include "metadb/JsonTree.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <tuple>

namespace VemoKesConfigTools::metadb {

namespace {

constexpr std::size_t MAXIMUM_NESTING = 32;

/// Counts the characters that the parser has consumed: the parser itself does not report positions of values.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, std::size_t* taken) : mpAt(at), mpTaken(taken) {}
    reference operator*() const { return *mpAt; }
    CountingIterator& operator++() {
        ++mpAt;
        ++*mpTaken;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return mpAt == other.mpAt; }

private:
    const char* mpAt;
    std::size_t* mpTaken;
};

/// Builds the tree from the parser's events.
class TreeBuilder {
public:
    using Json = nlohmann::json;

    TreeBuilder(std::string_view text, JsonNode& root, const std::size_t* taken)
        : mText(text), mRoot(root), mpTaken(taken) {}

    bool null() {
        Take(JsonNode::Kind::Null);
        return true;
    }
    bool boolean(bool value) {
        Take(JsonNode::Kind::Bool).boolean = value;
        return true;
    }
    bool number_integer(Json::number_integer_t value) { return TakeInteger(value); }
    bool number_unsigned(Json::number_unsigned_t value) {
        if (std::in_range<std::int64_t>(value)) return TakeInteger(static_cast<std::int64_t>(value));
        Take(JsonNode::Kind::Number);
        return true;
    }
    bool number_float(Json::number_float_t /*value*/, const std::string& /*text*/) {
        Take(JsonNode::Kind::Number);
        return true;
    }
    bool string(std::string& value) {
        Take(JsonNode::Kind::String).text = std::move(value);
        return true;
    }
    bool binary(Json::binary_t& /*value*/) { return false; }
    bool start_object(std::size_t /*count*/) { return Open(JsonNode::Kind::Object); }
    bool key(std::string& name) {
        const std::size_t offset = NextOffset();
        std::vector<JsonNode::Member>& members = mOpen.back()->members;
        if (!mNames.back().insert(name).second) return Fail(offset, "\"" + name + "\" is given twice");
        members.push_back({std::move(name), offset, {}});
        return true;
    }
    bool end_object() { return Close(); }
    bool start_array(std::size_t /*count*/) { return Open(JsonNode::Kind::Array); }
    bool end_array() { return Close(); }
    bool parse_error(std::size_t position, const std::string& /*token*/, const Json::exception& error) {
        const std::string_view what = error.what();
        const std::size_t words = what.find("syntax error");
        const std::string text(words == std::string_view::npos ? what : what.substr(words));
        return Fail(position == 0 ? 0 : position - 1, text);
    }

    bool Fail(std::size_t offset, std::string text) {
        // The parser may report errors that follow from the first one.
        if (!mFault) mFault = {offset, std::move(text)};
        return false;
    }
    const std::optional<std::pair<std::size_t, std::string>>& Fault() const { return mFault; }

private:
    /// The start of the value or name that the parser has just read: the first character after the previous
    /// one that is not a separator.
    std::size_t NextOffset() {
        const std::size_t offset = std::min(mText.find_first_not_of(" \t\r\n,:", mEnd), mText.size());
        mEnd = *mpTaken;
        return offset;
    }
    JsonNode& Take(JsonNode::Kind kind) {
        JsonNode* node = &mRoot;
        if (!mOpen.empty()) {
            JsonNode& parent = *mOpen.back();
            node = parent.kind == JsonNode::Kind::Array ? &parent.items.emplace_back()
                                                        : &parent.members.back().value;
        }
        node->kind = kind;
        node->offset = NextOffset();
        return *node;
    }
    bool TakeInteger(std::int64_t value) {
        Take(JsonNode::Kind::Integer).integer = value;
        return true;
    }
    bool Open(JsonNode::Kind kind) {
        JsonNode& node = Take(kind);
        if (mOpen.size() == MAXIMUM_NESTING) return Fail(node.offset, "nested too deeply");
        mOpen.push_back(&node);
        mNames.emplace_back();
        return true;
    }
    bool Close() {
        mOpen.pop_back();
        mNames.pop_back();
        mEnd = *mpTaken;
        return true;
    }

    std::string_view mText;
    JsonNode& mRoot;
    const std::size_t* mpTaken;
    std::size_t mEnd = 0;  ///< of the last value
    /// The open arrays and objects. The pointers stay valid: a list only grows while none of its items is
    /// open.
    std::vector<JsonNode*> mOpen;
    std::vector<std::set<std::string>> mNames;  ///< of the members of each, to find duplicates
    std::optional<std::pair<std::size_t, std::string>> mFault;
};

}  // namespace

const JsonNode* JsonNode::Find(std::string_view name) const {
    const auto found = std::ranges::find(members, name, &Member::name);
    return found == members.end() ? nullptr : &found->value;
}

bool ParseJson(std::string_view text, JsonNode& root, std::size_t& faultOffset, std::string& fault) {
    std::size_t taken = 0;
    TreeBuilder builder(text, root, &taken);
    const CountingIterator begin(text.data(), &taken);
    const CountingIterator end(text.data() + text.size(), &taken);
    if (nlohmann::json::sax_parse(begin, end, &builder)) return true;
    std::tie(faultOffset, fault) = builder.Fault().value_or(std::pair(std::size_t{0}, "invalid JSON"));
    return false;
}

}  // namespace VemoKesConfigTools::metadb
