#include "files/FolderJournal.h"

#include "files/Files.h"
#include "files/OpenFile.h"
#include "files/TemporaryFile.h"

#include <cerrno>
#include <cstdio>
#include <zlib.h>

namespace VemoKesConfigTools::files {

namespace {

// A journal is a sequence of words, each terminated by a zero byte, which no file name contains: the heading,
// then "put" NAME TEMPORARY and "remove" NAME entries, then "end". The CRC-32 of all that follows, in
// hexadecimal.
constexpr std::string_view HEADING = "kes-journal 1";
constexpr std::string_view PUT = "put";
constexpr std::string_view REMOVE = "remove";
constexpr std::string_view END = "end";

void Append(std::string& bytes, std::string_view word) { bytes.append(word).push_back('\0'); }

std::string Sum(std::string_view bytes) {
    const uLong sum = crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    char text[9];
    std::snprintf(text, sizeof text, "%08lx", sum);
    return text;
}

/// A damaged or forged journal must not rename or remove files outside the folder.
bool IsNameInFolder(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

std::optional<std::string> TakeWord(std::string_view& bytes) {
    const std::size_t end = bytes.find('\0');
    if (end == std::string_view::npos) return std::nullopt;
    std::string word(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
    return word;
}

/// Ignores a missing file: an interrupted run may already have renamed or removed it.
void CheckDone(const std::string& path, int result) {
    if (result < 0 && result != -ENOENT) throw FileError(FileAction::WRITE, path, -result);
}

}  // namespace

std::string EncodeJournal(const FolderJournal& journal) {
    std::string bytes;
    Append(bytes, HEADING);
    for (const FolderJournal::Put& put : journal.puts) {
        Append(bytes, PUT);
        Append(bytes, put.name);
        Append(bytes, put.temporary);
    }
    for (const std::string& name : journal.removed) {
        Append(bytes, REMOVE);
        Append(bytes, name);
    }
    Append(bytes, END);
    return bytes + Sum(bytes);
}

std::optional<FolderJournal> DecodeJournal(std::string_view bytes) {
    const std::string_view whole = bytes;
    if (TakeWord(bytes) != HEADING) return std::nullopt;
    FolderJournal journal;
    for (;;) {
        const std::optional<std::string> word = TakeWord(bytes);
        if (word == END) {
            if (bytes != Sum(whole.substr(0, whole.size() - bytes.size()))) return std::nullopt;
            return journal;
        }
        const std::optional<std::string> name = TakeWord(bytes);
        if (!word || !name || !IsNameInFolder(*name)) return std::nullopt;
        if (word == REMOVE) {
            journal.removed.push_back(*name);
            continue;
        }
        const std::optional<std::string> temporary = TakeWord(bytes);
        if (word != PUT || !temporary || !IsTemporaryFor(*temporary, *name, SET_MARK)) return std::nullopt;
        journal.puts.push_back({*name, *temporary});
    }
}

std::optional<FolderJournal> ReadJournal(const std::string& folder) {
    const std::string path = Join(folder, JOURNAL_NAME);
    if (!Look(path)) return std::nullopt;
    std::string bytes;
    try {
        bytes = ReadFile(path, Readable::REGULAR_FILES).bytes;
    } catch (const FileError& error) {
        // Its save has been finished in the meantime.
        if (error.Number() == ENOENT) return std::nullopt;
        throw;
    }
    std::optional<FolderJournal> journal = DecodeJournal(bytes);
    if (!journal) throw FileError(FileAction::READ, path, "the journal of a save is damaged");
    return journal;
}

void FinishJournal(const std::string& folder, const FolderJournal& journal) {
    for (const FolderJournal::Put& put : journal.puts) {
        const std::string path = Join(folder, put.name);
        CheckDone(path, Uninterrupted([&] { return Disk().Rename(Join(folder, put.temporary), path); }));
    }
    for (const std::string& name : journal.removed) {
        const std::string path = Join(folder, name);
        CheckDone(path, Uninterrupted([&] { return Disk().Remove(path); }));
    }
    // The changes must reach the disk before the journal that would repeat them is removed.
    SyncFolder(folder);
    const std::string path = Join(folder, JOURNAL_NAME);
    CheckDone(path, Uninterrupted([&] { return Disk().Remove(path); }));
    // If the journal reappeared after a power cut, it would remove files that were created since.
    SyncFolder(folder);
}

}  // namespace VemoKesConfigTools::files
