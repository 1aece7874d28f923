#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

/// What a save of a folder has committed to.
struct FolderJournal {
    struct Put {
        std::string name;
        std::string temporary;  ///< the name under which the content lies until it gets its own
    };
    std::vector<Put> puts;
    std::vector<std::string> removed;
};

/// The name of a committed journal.
inline constexpr std::string_view JOURNAL_NAME = ".kes-journal";
/// The mark of files that wait for their names. They are not those of a single replaced file, which anybody
/// who has its lock may clear.
inline constexpr std::string_view SET_MARK = ".kes-set-";

std::string EncodeJournal(const FolderJournal& journal);
/// Nothing when the bytes are no whole journal.
std::optional<FolderJournal> DecodeJournal(std::string_view bytes);
/// The journal of a folder; nothing when no save was cut there. Throws `FileError`.
std::optional<FolderJournal> ReadJournal(const std::string& folder);
/// Does what a committed journal says, as far as it is not done, and removes it. Throws `FileError`.
void FinishJournal(const std::string& folder, const FolderJournal& journal);

}  // namespace VemoKesConfigTools::files
