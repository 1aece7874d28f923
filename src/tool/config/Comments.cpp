#include "tool/config/Comments.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace kes::tool {

namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view BLANKS = " \t\r\n\\";
    const std::size_t first = text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

/// Where a comment of one line ends: at a line end that no backslash joins.
std::size_t LineCommentEnd(std::string_view text, std::size_t from) {
    for (std::size_t i = from; i < text.size(); ++i) {
        const bool lineEnd = text[i] == '\n' || text[i] == '\r';
        if (lineEnd && text[i - 1] != '\\') return i;
        if (lineEnd && text.substr(i, 2) == "\r\n") ++i;
    }
    return text.size();
}

/// Where a quoted string ends that begins at `from`; it ends with its line at the latest.
std::size_t QuoteEnd(std::string_view text, std::size_t from) {
    for (std::size_t i = from + 1; i < text.size(); ++i) {
        if (text[i] == '\\') {
            if (text.substr(i + 1, 2) == "\r\n") ++i;
            ++i;
        } else if (text[i] == '"' || text[i] == '\n' || text[i] == '\r') {
            return i;
        }
    }
    return text.size();
}

}  // namespace

std::vector<std::string> CommentsOf(std::string_view text) {
    std::vector<std::string> comments;
    const auto add = [&](std::size_t from, std::size_t to) {
        std::string_view comment = text.substr(from, to - from);
        comment.remove_prefix(std::min(comment.find_first_not_of('#'), comment.size()));
        comment = Trimmed(comment);
        const auto says = [](unsigned char c) { return std::isalnum(c) != 0 || c >= 0x80; };
        if (std::ranges::any_of(comment, says)) comments.emplace_back(comment);
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t end = i;
        if (text[i] == '#') {
            end = LineCommentEnd(text, i + 1);
            add(i, end);
        } else if (text.substr(i, 2) == "/*") {
            end = std::min(text.find("*/", i + 2), text.size());
            add(i + 2, end);
            ++end;
        } else if (text[i] == '"') {
            end = QuoteEnd(text, i);
        }
        i = std::max(i, end);
    }
    return comments;
}

std::vector<std::string> CommentsMissing(std::string_view text, std::string_view other) {
    std::vector<std::string> missing;
    const std::vector<std::string> list = CommentsOf(other);
    std::multiset<std::string> there(list.begin(), list.end());
    for (std::string& comment : CommentsOf(text)) {
        const auto found = there.find(comment);
        if (found != there.end()) {
            there.erase(found);
        } else {
            missing.push_back(std::move(comment));
        }
    }
    return missing;
}

}  // namespace kes::tool
