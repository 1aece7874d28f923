#include "tool/config/FindingNotes.h"

#include "kes/configtools/readerwriters/kestext/common/textparser/CParserError.h"
#include "tool/config/SourceWords.h"
#include "tool/keys/DeviceWords.h"
#include "tool/output/NearNames.h"

#include <algorithm>
#include <cctype>

namespace kes::tool {

namespace {

using VemoKesConfigTools::TextFinding;
using enum VemoKesConfigTools::ParserErrorCode;

constexpr std::size_t MOST_CHOICES = 8;

std::string Range(std::int64_t min, std::int64_t max) {
    return min == max ? std::to_string(min) : std::to_string(min) + " to " + std::to_string(max);
}

/// "a, b, c", cut off with the number of all of them and the command that tells the rest.
std::string Choices(const std::vector<std::string>& names, const std::string& key) {
    const bool all = names.size() <= MOST_CHOICES;
    std::string list;
    for (std::size_t i = 0; i < (all ? names.size() : MOST_CHOICES); ++i) {
        list += (i == 0 ? "" : ", ") + names[i];
    }
    if (all) return list;
    return list + ", ... (" + std::to_string(names.size()) + " in all; kes describe " + key + ")";
}

bool IsStruct(const api::Metadata& key) { return key.Details() && key.Details()->StructFields(); }

/// Whether a key that the metadata does not know, given by its number, has another value than a raw one.
bool IsUnknownNumber(const TextFinding& said) {
    return said.key.starts_with("Id: ") &&
           (said.code == PE_UNKNOWN_NAME || said.code == PE_VALUE_NOT_SUPPORTED);
}

/// One value of a key, as it is to be written.
std::string ItemText(const api::Metadata& key) {
    const std::string name = Text(key.Name());
    std::vector<std::string> names;
    if (IsStruct(key)) {
        for (const auto& field : key.Details()->StructFields())
            names.push_back(Text(field->MetaData()->Name()));
        return "{" + Choices(names, name) + "}";
    }
    if (key.Details() && key.Details()->Enums()) {
        for (const auto& [choice, value] : key.Details()->Enums()) names.push_back(Text(choice));
        return (names.size() == 1 ? "" : "one of ") + Choices(names, name);
    }
    if (key.SimpleType() != api::SimpleElementTypes::String) return Range(key.Min(), key.Max());
    const std::string format = Text(key.Format());
    if (format == "unicode_string") return "a text in quotes";
    return format == "mac_addr" ? "an address like 00:11:22:33:44:55" : "octets in brackets like [00 11]";
}

/// What a key takes, on one line: "KEY takes 1 to 7".
std::string TakesText(const api::Metadata& key, bool aboutNumbers) {
    const std::string name = Text(key.Name());
    std::string text = name + " takes ";
    if (key.IsArray()) {
        text += Range(key.ArrayMinLength(), key.ArrayMaxLength()) + " items in braces, each " + ItemText(key);
    } else {
        text += ItemText(key);
    }
    if (aboutNumbers && IsStruct(key)) text += "; kes describe " + name + " tells the range of each";
    return text;
}

/// The indexes of a key in their order; empty for a key without.
std::string IndexText(const api::Metadata& key) {
    if (!key.TableIndexes()) return {};
    std::string form = Text(key.Name());
    std::string ranges;
    for (const auto& index : key.TableIndexes()) {
        form += ".<" + Text(index->Name()) + ">";
        ranges += ", " + Text(index->Name()) + " " + Range(index->Min(), index->Max());
    }
    return "written " + form + ranges;
}

/// Offers the near words, and says which word they could stand for.
void Offer(const std::vector<std::string>& names, const std::string& misspelt, std::optional<SourceWord> word,
           Finding& finding) {
    finding.near = NearNames(misspelt, names);
    if (finding.near.empty()) return;
    finding.notes.push_back(DidYouMean(misspelt, names));
    finding.word = std::move(word);
}

/// The near enumerators. The message lists all that the value could be, for a field those of the field.
void AddNearValues(const TextFinding& said, std::string_view line, Finding& finding) {
    constexpr std::string_view BETWEEN = " must be one of ";
    const std::size_t end = said.detail.find(BETWEEN);
    if (end == std::string::npos) return;
    const std::string word = said.detail.substr(0, end);
    std::vector<std::string> names;
    for (std::size_t at = end + BETWEEN.size(); at < said.detail.size();) {
        const std::size_t stop = said.detail.find('(', at);
        if (stop == std::string::npos) break;
        names.push_back(said.detail.substr(at, stop - at));
        const std::size_t next = said.detail.find(", ", stop);
        at = next == std::string::npos ? said.detail.size() : next + 2;
    }
    // A number is no misspelt name.
    if (word.empty() || std::isdigit(static_cast<unsigned char>(word.front())) != 0) return;
    Offer(names, word, FindValueWord(line, word, said.column), finding);
}

}  // namespace

void FindingNotes::Add(const api::Chip& chip, const TextFinding& said, std::string_view line,
                       Finding& finding) {
    if (IsUnknownNumber(said)) {
        finding.notes.emplace_back(
            "a number that the metadata does not know takes a raw value, as in % 0x1234 [01 02] %");
        return;
    }
    switch (said.code) {
        case PE_UNKNOWN_NAME:
        case PE_NO_KEY_NUMBER:
            AddNearKeys(chip, said, line, finding);
            break;
        case PE_UNKNOWN_VALUE:
            AddNearValues(said, line, finding);
            break;
        case PE_UNKNOWN_SUBSYSTEM:
        case PE_UNKNOWN_DEVICE:
        case PE_INVALID_STORE:
            AddPlace(chip, said, line, finding);
            break;
        case PE_STORE_OUT_OF_RANGE:
            if (said.detail.empty()) finding.notes.emplace_back("a prefix takes a store from 1 to 15");
            break;
        default:
            AddValue(chip, said, line, finding);
            break;
    }
}

const std::vector<FindingNotes::Known>& FindingNotes::KeysOf(const api::Chip& chip) {
    const auto [entry, isNew] = mKeys.try_emplace(Text(chip.SystemVersionLabel()));
    if (isNew) {
        for (const auto& subsystem : mSession.Subsystems(chip)) {
            entry->second.push_back({subsystem, mSession.Keys(chip, *subsystem)});
        }
    }
    return entry->second;
}

std::shared_ptr<api::Metadata> FindingNotes::FindKey(const api::Chip& chip, const TextFinding& said) {
    if (said.key.empty()) return nullptr;
    for (const Known& known : KeysOf(chip)) {
        if (said.subsystem != -1 && known.subsystem->Type() != said.subsystem) continue;
        const auto found =
            std::ranges::find_if(known.keys, [&](const auto& key) { return Text(key->Name()) == said.key; });
        if (found == known.keys.end()) continue;
        mSession.LoadDetails(chip, known.subsystem, *found);
        return *found;
    }
    return nullptr;
}

void FindingNotes::AddNearKeys(const api::Chip& chip, const TextFinding& said, std::string_view line,
                               Finding& finding) {
    std::vector<std::string> names;
    for (const Known& known : KeysOf(chip)) {
        const bool here = said.subsystem == -1 || known.subsystem->Type() == said.subsystem;
        for (const auto& key : known.keys) {
            std::string name = Text(key->Name());
            if (!here && name == said.key) {
                finding.notes.push_back(Text(known.subsystem->Name()) + " has a key of this name");
            }
            if (here) names.push_back(std::move(name));
        }
    }
    if (finding.notes.empty()) Offer(names, said.key, FindKeyWord(line, said.key, said.column), finding);
}

void FindingNotes::AddPlace(const api::Chip& chip, const TextFinding& said, std::string_view line,
                            Finding& finding) {
    const bool isSubsystem = said.code == PE_UNKNOWN_SUBSYSTEM;
    if (line.empty()) return;
    const std::optional<SourceWord> word = FindPlaceWord(line, said.column);
    if (!word) {
        // A key line, whose place has a part missing.
        const char* part = isSubsystem ? "subsystem" : said.code == PE_UNKNOWN_DEVICE ? "device" : "store";
        finding.notes.push_back(std::string("no good \"") + part + "=\" line stands above this key");
        return;
    }
    std::vector<std::string> names;
    std::vector<std::string> aliases;
    if (isSubsystem) {
        for (const auto& subsystem : mSession.Subsystems(chip)) {
            // The text format has no word for it.
            if (subsystem->Type() == api::SUBSYSTEM_TYPE_GNSS) continue;
            if (const std::string name = Text(subsystem->Name()); std::ranges::count(names, name) == 0) {
                names.push_back(name);
            }
            if (!Text(subsystem->Alias()).empty()) aliases.push_back(Text(subsystem->Alias()));
        }
    } else {
        for (const auto& [name, number] : DEVICE_NAMES) names.emplace_back(name);
    }
    aliases.insert(aliases.end(), names.begin(), names.end());
    Offer(aliases, word->text, word, finding);
    if (!finding.notes.empty() || !said.detail.empty()) return;
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    finding.notes.push_back((isSubsystem ? "subsystems: " : "devices: ") + list);
}

void FindingNotes::AddValue(const api::Chip& chip, const TextFinding& said, std::string_view line,
                            Finding& finding) {
    bool aboutNumbers = false;
    switch (said.code) {
        case PE_NUMBER_TOO_SMALL:
        case PE_NUMBER_TOO_LARGE:
        case PE_NUMBER_EXPECTED:
        case PE_UNSIGNED_EXPECTED:
        case PE_HEX_EXPECTED:
            aboutNumbers = true;
            break;
        case PE_WRONG_INDEX_COUNT:
        case PE_MISSING_OPENING_BRACE:
        case PE_MISSING_CLOSING_BRACE:
        case PE_MISSING_COMMA:
        case PE_MISSING_OPEN_BRACKET:
            break;
        default:
            return;
    }
    const std::shared_ptr<api::Metadata> key = FindKey(chip, said);
    if (!key) return;
    const std::string before(line.substr(0, std::min<std::size_t>(line.size(), said.column - 1)));
    const bool inIndexes = !line.empty() && before.find('=') == std::string::npos;
    if (said.code == PE_WRONG_INDEX_COUNT || (aboutNumbers && inIndexes)) {
        if (std::string indexes = IndexText(*key); !indexes.empty())
            finding.notes.push_back(std::move(indexes));
        return;
    }
    finding.notes.push_back(TakesText(*key, aboutNumbers));
}

}  // namespace kes::tool
