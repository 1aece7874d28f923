// The keyword lines of the parser: what they read, and what they do to the place.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/ReadNumber.h"
#include "model/CKesContext.h"
#include "model/CStoreInfo.h"
#include "model/DeviceNames.h"
#include "model/IConfigReaderObserver.h"
#include "model/ISubsystemInfo.h"
#include "util/misc/ignorecase.h"
#include "util/misc/stringutil.h"

#include <utility>

namespace VemoKesConfigTools {

namespace {

struct NamedNumber {
    std::string_view name;
    std::int32_t number;
};

constexpr NamedNumber SUBSYSTEMS[] = {
    {STR_SUBSYSTEM_CURATOR, SUBSYSTEM_CURATOR}, {STR_SUBSYSTEM_BT, SUBSYSTEM_BT},
    {STR_SUBSYSTEM_WLAN, SUBSYSTEM_WLAN},       {STR_SUBSYSTEM_AUDIO, SUBSYSTEM_AUDIO},
    {STR_SUBSYSTEM_NFC, SUBSYSTEM_NFC},         {STR_SUBSYSTEM_JANITOR, SUBSYSTEM_JANITOR},
    {STR_SUBSYSTEM_APP, SUBSYSTEM_APP},         {STR_SUBSYSTEM_BLE, SUBSYSTEM_BLE},
    {STR_SUBSYSTEM_PSAPPS, SUBSYSTEM_PSAPPS},   {STR_SUBSYSTEM_PSAUDIO, SUBSYSTEM_PSAUDIO},
};

constexpr CCharSet VERSION_ENDS(" \t\n");
constexpr CCharSet HEX_STORE_CHARS("xX0123456789ABCDEFabcdef");

template <typename Table>
std::int32_t NumberOf(const Table& table, std::string_view name) {
    for (const auto& [known, number] : table) {
        if (EqualsIgnoringCase(known, name)) return number;
    }
    return -1;
}

}  // namespace

CParserError CKesParser::StartValue(std::size_t keywordLength) {
    mpSource->Skip(keywordLength);
    SkipWhitespace();
    if (mpSource->PeekChar() != '=') return PE_DELIMITER_MISSING;
    mpSource->Skip(1);
    SkipWhitespace();
    return PE_NONE;
}

CParserError CKesParser::DecodeVersion() {
    if (!mSystemVersion.empty()) return PE_VERSION_ALREADY_SET;
    if (CParserError result = StartValue(std::string_view("version").size()); !result.Ok()) return result;
    mSystemVersion = ReadUntilMatch(VERSION_ENDS);
    return mSystemVersion.empty() ? PE_NO_SYSTEM_VERSION : PE_NONE;
}

CParserError CKesParser::DecodeFile() {
    if (CParserError result = StartValue(std::string_view("file").size()); !result.Ok()) return result;
    std::string name;
    CStoreAddress place = mpParseContext->mInfo;
    CParserError result = ParseFile(name, place);
    if (result.mCode == PE_UNKNOWN_SUBSYSTEM) {
        result.SetDetail(name + " is not a valid subsystem. Valid subsystems are: " + SubsystemList());
    } else if (result.mCode == PE_STORE_OUT_OF_RANGE) {
        result.SetDetail("Store should be between 1 and 15");
    }
    if (result.Ok()) EnterPlace(place);
    return result;
}

/// Makes a place that a "file" line names that of the lines that follow.
void CKesParser::EnterPlace(const CStoreAddress& place) {
    mpParseContext->mInfo = place;
    CKesContext& context = *mpParseContext->mpConfigContext;
    context.SetSubsystemType(place.mSubsystem);
    context.SetDevice(place.mDevice);
    context.SetStore(place.mStore);
}

CParserError CKesParser::DecodeSubsystem() {
    if (CParserError result = StartValue(std::string_view("subsystem").size()); !result.Ok()) return result;
    std::string name;
    if (CParserError result = ParseSubsystem(name, mpParseContext->mInfo); !result.Ok()) return result;
    CKesContext& context = *mpParseContext->mpConfigContext;
    context.SetSubsystemType(mpParseContext->mInfo.mSubsystem);
    context.SetTag(STR_DEVICE);
    context.SetTag(STR_STORE);
    return PE_NONE;
}

CParserError CKesParser::DecodeDevice() {
    if (CParserError result = StartValue(std::string_view("device").size()); !result.Ok()) return result;
    if (CParserError result = ParseDevice(mpParseContext->mInfo); !result.Ok()) return result;
    mpParseContext->mpConfigContext->SetDevice(mpParseContext->mInfo.mDevice);
    return PE_NONE;
}

CParserError CKesParser::DecodeStore() {
    if (CParserError result = StartValue(std::string_view("store").size()); !result.Ok()) return result;
    if (CParserError result = ParseStore(mpParseContext->mInfo); !result.Ok()) return result;
    KESTEXT_TRACE(2, "CKesParser::DecodeStore", "context.mInfo.mStore = %d", mpParseContext->mInfo.mStore);
    mpParseContext->mpConfigContext->SetStore(mpParseContext->mInfo.mStore);
    return PE_NONE;
}

/// place ::= subsystem [decimal]          always on the device eeprom; without a number the store is 1
CParserError CKesParser::ParseFile(std::string& name, CStoreAddress& place) {
    if (CParserError result = ParseSubsystem(name, place); !result.Ok()) return result;
    place.mDevice = IStoreManager::DEVICE_EEPROM;
    std::uint16_t store = 0;
    std::uint16_t digits = 0;
    CParserError result = ReadDecimalNumber<std::uint16_t>(*mpSource, store, digits);
    if (result.mCode == PE_NUMBER_EXPECTED) {
        place.mStore = FILE_STORE_FIRST;
        return PE_NONE;
    }
    if (!result.Ok()) return result;
    if (store < FILE_STORE_FIRST || store > FILE_STORE_LAST) return PE_STORE_OUT_OF_RANGE;
    place.mStore = store;
    return PE_NONE;
}

/// subsystem ::= name or alias of letters and "_", which the metadata lists
CParserError CKesParser::ParseSubsystem(std::string& name, CStoreAddress& place) {
    name = ReadUntilNotMatch(KEYWORD_CHARS);
    place.mSubsystem = -1;
    const SubsystemName* found = FindSubsystem(name);
    if (found == nullptr) return PE_UNKNOWN_SUBSYSTEM;
    name = found->name;
    if (found->type == -1) return PE_UNKNOWN_SUBSYSTEM;
    place.mSubsystem = found->type;
    return PE_NONE;
}

/// device ::= "rom" | "otp" | "smem" | "mtp" | "cur_cfg" | "fw_cfg" | "eeprom"
CParserError CKesParser::ParseDevice(CStoreAddress& place) {
    place.mDevice = NumberOf(DEVICE_NAMES, ReadUntilNotMatch(KEYWORD_CHARS));
    return place.mDevice == -1 ? PE_UNKNOWN_DEVICE : PE_NONE;
}

/// store ::= decimal of 16 bits | "0x" {hex}, of which the low 16 bits count
CParserError CKesParser::ParseStore(CStoreAddress& place) {
    std::uint16_t store = 0;
    if (StartsHexNumber(*mpSource)) {
        store = static_cast<std::uint16_t>(stringutil::HexStrToInt(ReadUntilNotMatch(HEX_STORE_CHARS)));
    } else {
        std::uint16_t digits = 0;
        if (CParserError result = ReadDecimalNumber<std::uint16_t>(*mpSource, store, digits); !result.Ok())
            return result;
    }
    place.mStore = store;
    KESTEXT_TRACE(2, "CKesParser::ParseStore", "store = %d", place.mStore);
    return PE_NONE;
}

CParserError CKesParser::SetSubsystem() {
    CKesContext& context = *mpParseContext->mpConfigContext;
    CKesConfigReader& reader = *mpParseContext->mpReader;
    const auto device = static_cast<IStoreManager::DEVICE>(context.Device());
    const auto number = static_cast<std::uint16_t>(context.Store());
    const CStoreInfo* store = reader.FindStore(device, number);
    if (store == nullptr) {
        store = reader.AddStore(device, number, mNextOrder);
        ++mNextOrder;
    }
    context.SetOrder(store->Order());
    reader.Observer()->OnSubsystemFound(reader, context);
    mpParseContext->mpProvider->MetadataList(context, true);
    return PE_NONE;
}

/// prefix ::= [place "."]
CParserError CKesParser::Prefix() {
    CStoreAddress& prefix = mpParseContext->mPrefix;
    prefix.mSubsystem = -1;
    if (SurelyNoPrefix()) return PE_NONE;
    const CTextReader::Position start = mpSource->GetPosition();
    std::string name;
    CParserError result = ParseFile(name, prefix);
    if (!result.Ok() && result.mCode != PE_UNKNOWN_SUBSYSTEM) return result;
    if (result.Ok() && mpSource->GetChar() == '.' && !mpSource->Eof()) return result;
    prefix.mSubsystem = -1;
    mpSource->SetPosition(start);
    return PE_NONE;
}

bool CKesParser::SurelyNoPrefix() {
    static constexpr CCharSet BEHIND_SUBSYSTEM(".+-0123456789");
    const std::string_view run = mpSource->PlainRun();
    std::size_t length = 0;
    while (length < run.size() && KEYWORD_CHARS.Holds(static_cast<unsigned char>(run[length]))) ++length;
    if (length == run.size()) return false;
    return !BEHIND_SUBSYSTEM.Holds(static_cast<unsigned char>(run[length])) ||
           FindSubsystem(run.substr(0, length)) == nullptr;
}

const std::vector<CKesParser::SubsystemName>& CKesParser::SubsystemNames() {
    if (!mSubsystemNamesKnown) {
        const auto& infos = mpParseContext->mpProvider->SubsystemInfos(*mpParseContext->mpConfigContext);
        mSubsystemNames.reserve(infos.size());
        for (const ISubsystemInfo* info : infos) {
            std::string name = info->Name();
            const std::int32_t type = NumberOf(SUBSYSTEMS, name);
            mSubsystemNames.push_back({std::move(name), info->Alias(), type});
        }
        mSubsystemNamesKnown = true;
    }
    return mSubsystemNames;
}

const CKesParser::SubsystemName* CKesParser::FindSubsystem(std::string_view word) {
    if (word.empty()) return nullptr;
    for (const SubsystemName& subsystem : SubsystemNames()) {
        if (EqualsIgnoringCase(word, subsystem.name) || EqualsIgnoringCase(word, subsystem.alias))
            return &subsystem;
    }
    return nullptr;
}

std::string CKesParser::SubsystemList() {
    std::string list;
    const std::string* previous = nullptr;
    for (const SubsystemName& subsystem : SubsystemNames()) {
        if (previous != nullptr && *previous == subsystem.name) continue;
        if (previous != nullptr) list += ", ";
        list += subsystem.name;
        previous = &subsystem.name;
    }
    return list;
}

std::string CKesParser::FindAlias(IConfigContext& /*context*/, const std::string& name) {
    for (const SubsystemName& subsystem : SubsystemNames()) {
        if (subsystem.name == name) return subsystem.alias.empty() ? name : subsystem.alias;
    }
    return name;
}

}  // namespace VemoKesConfigTools
