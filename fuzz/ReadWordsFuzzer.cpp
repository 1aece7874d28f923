// Any bytes as words of the command line, one a line: keys, configurations, and what is looked for in a line
// of a text.

#include "tool/config/ConfigSource.h"
#include "tool/config/SourceWords.h"
#include "tool/keys/KeyAddress.h"
#include "tool/output/ExitCodes.h"
#include "tool/output/NearNames.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kes::tool;

[[noreturn]] void Fault(const char* what, std::string_view word) {
    std::fprintf(stderr, "FAULT: %s: %.*s\n", what, static_cast<int>(word.size()), word.data());
    std::abort();
}

/// A key is a name or a number, and comes back from its own parts.
void ReadKey(const std::string& word) {
    try {
        const KeyAddress key(word);
        std::string parts = key.number ? std::to_string(*key.number) : key.name;
        for (const std::int32_t index : key.indexes) parts += "." + std::to_string(index);
        const KeyAddress again(parts);
        if (again.number != key.number || again.name != key.name || again.indexes != key.indexes)
            Fault("another key", word);
    } catch (const Failure&) {
        // Most words are no key.
    }
}

void ReadConfig(const std::string& word) {
    try {
        const ConfigSource source(word);
        if (source.target.empty() && !word.empty()) Fault("no target", word);
    } catch (const Failure&) {
        // A prefix without a path is refused.
    }
}

/// What is found stands in the line, in front of where the reader stopped.
void FindWords(const std::string& line, const std::string& word) {
    const auto end = static_cast<std::uint32_t>(line.size() / 2 + 1);
    for (const auto& found :
         {FindKeyWord(line, word, end), FindValueWord(line, word, end), FindPlaceWord(line, end)}) {
        if (found && (found->column == 0 || found->column > end)) Fault("a word outside the line", line);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<std::string> NAMES = {"tx_power_default", "tx_power_max", "gap_name", "a"};
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string before = "a";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string word(text.substr(at, end - at));
        ReadKey(word);
        ReadConfig(word);
        FindWords(word, before);
        DidYouMean(word, NAMES);
        before = word;
        at = end + 1;
    }
    return 0;
}
