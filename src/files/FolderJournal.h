#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools::files {

/// The changes that a committed save makes to a folder.
struct FolderJournal {
    struct Put {
        std::string name;
        std::string temporary;  ///< the name of the file with the new content, until it is renamed
    };
    std::vector<Put> puts;
    std::vector<std::string> removed;
};

/// The name of a committed journal.
inline constexpr std::string_view JOURNAL_NAME = ".kes-journal";
/// The mark in the names of files that a journal will rename. It differs from `REPLACEMENT_MARK`, whose files
/// any holder of a single file's lock may remove.
inline constexpr std::string_view SET_MARK = ".kes-set-";

std::string EncodeJournal(const FolderJournal& journal);
/// Empty if the bytes are not a complete journal.
std::optional<FolderJournal> DecodeJournal(std::string_view bytes);
/// The journal of a folder; empty if no interrupted save left one. Throws `FileError`.
std::optional<FolderJournal> ReadJournal(const std::string& folder);
/// Carries out the remaining changes of a committed journal and removes it. Throws `FileError`.
void FinishJournal(const std::string& folder, const FolderJournal& journal);

}  // namespace VemoKesConfigTools::files
