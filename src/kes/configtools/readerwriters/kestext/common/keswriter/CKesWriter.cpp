#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesWriter.h"

#include "files/OutputStream.h"
#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesFormat.h"
#include "messages/CDebugSentry.h"
#include "model/CKesContext.h"
#include "model/IMetadata.h"
#include "model/IMetadataProvider.h"
#include "model/IStoreManager.h"
#include "model/ISubsystemInfo.h"
#include "model/MetadataTypes.h"
#include "model/Payloads.h"
#include "model/Words.h"

#include <cstring>
#include <iostream>
#include <typeinfo>
#include <utility>
#include <vector>

// Opened in every public operation; costs one test while debug is off.
#define KESWRITER_SENTRY(function)                                                                   \
    const CDebugSentry sentry(CTheMsgHnd::DebugActivated() ? &Handler(function) : nullptr, __LINE__, \
                              __FILE__, function)

namespace VemoKesConfigTools {

namespace {

constexpr std::string_view BANNER = "##############################";
constexpr std::string_view UNKNOWN_SUBSYSTEM = "<unknown>";
constexpr std::int16_t ERROR_DATA = 0;

CMessageHandler& Handler(const char* function) {
    CTheMsgHnd::Instance();
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_KESTEXT, function, false);
}

/// Stores the error `TEXT: SUBJECT`.
void Fail(const char* function, std::string_view text, const std::string& subject) {
    Handler(function).SetErrorMsg(ERROR_DATA, subject);
    Handler(function).ModifyErrorMsg(ERROR_DATA, std::string(text), CMessageHandler::GROUP_ANY);
}

/// The context as the one that holds a place. Null, and an error stored, when it is another.
const CKesContext* PlaceOf(const IConfigContext& context, const char* function) {
    const auto* place = dynamic_cast<const CKesContext*>(&context);
    if (place == nullptr) Handler(function).SetErrorMsg(ERROR_DATA, std::string(STR_INVALID_CONTEXT));
    return place;
}

/// Empty for a type that a text has no name for.
std::string_view CanonicalName(std::int32_t subsystem) {
    switch (subsystem) {
        case SUBSYSTEM_CURATOR:
            return STR_SUBSYSTEM_CURATOR;
        case SUBSYSTEM_BT:
            return STR_SUBSYSTEM_BT;
        case SUBSYSTEM_WLAN:
            return STR_SUBSYSTEM_WLAN;
        case SUBSYSTEM_AUDIO:
            return STR_SUBSYSTEM_AUDIO;
        case SUBSYSTEM_NFC:
            return STR_SUBSYSTEM_NFC;
        case SUBSYSTEM_JANITOR:
            return STR_SUBSYSTEM_JANITOR;
        case SUBSYSTEM_APP:
            return STR_SUBSYSTEM_APP;
        case SUBSYSTEM_BLE:
            return STR_SUBSYSTEM_BLE;
        case SUBSYSTEM_PSAPPS:
            return STR_SUBSYSTEM_PSAPPS;
        case SUBSYSTEM_PSAUDIO:
            return STR_SUBSYSTEM_PSAUDIO;
        default:
            return {};
    }
}

/// Empty for a device that a text has no name for.
std::string_view DeviceText(std::int32_t device) {
    switch (device) {
        case IStoreManager::DEVICE_NONE:
            return STR_DEVICE_NONE;
        case IStoreManager::DEVICE_ROM:
            return STR_DEVICE_ROM;
        case IStoreManager::DEVICE_OTP:
            return STR_DEVICE_OTP;
        case IStoreManager::DEVICE_SMEM:
            return STR_DEVICE_SMEM;
        case IStoreManager::DEVICE_MTP:
            return STR_DEVICE_MTP;
        case IStoreManager::DEVICE_CUR_CFG:
            return STR_STORESET_CUR_CFG_FS;
        case IStoreManager::DEVICE_FW_CFG:
            return STR_STORESET_FW_CFG_FS;
        default:
            return {};
    }
}

/// Whether this is a composite, whatever its type. The class is final, so that no slower cast is needed.
bool IsComposite(const IPayload& payload) { return typeid(payload) == typeid(CComplexPayload); }

/// For a payload of any class, the ones of plug-ins included.
const IMetadata* MetadataOf(const IPayload& payload) {
    const auto* user = dynamic_cast<const IMetadataUser*>(&payload);
    return user == nullptr ? nullptr : user->Metadata();
}

std::string FormatOf(const IMetadata* metadata) {
    return metadata == nullptr ? std::string() : metadata->Format();
}

void AppendQuoted(std::string& text, const std::string& bytes) {
    text += '"';
    for (const char byte : bytes) {
        switch (byte) {
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            case '\0':
                text += "\\0";
                break;
            case '\\':
            case '"':
                text += '\\';
                [[fallthrough]];
            default:
                text += byte;
        }
    }
    text += '"';
}

void AppendMacAddress(std::string& text, const std::string& bytes) {
    bool first = true;
    for (const char byte : bytes) {
        if (!first) text += ':';
        CKesFormat::AppendByte(text, byte);
        first = false;
    }
}

void AppendOctets(std::string& text, const std::string& bytes) {
    text += "[ ";
    for (const char byte : bytes) {
        CKesFormat::AppendByte(text, byte);
        text += ' ';
    }
    text += ']';
}

}  // namespace

CKesWriter::CKesWriter() : CKesWriter(&std::cout, nullptr) {}

CKesWriter::CKesWriter(std::ostream* stream, IMetadataProvider* provider)
    : mpStream(stream), mpProvider(provider) {}

CKesWriter::CKesWriter(const std::string& fileName, IMetadataProvider* provider)
    : mpStream(nullptr), mpProvider(provider), mFileName(fileName) {}

CKesWriter::~CKesWriter() = default;

void CKesWriter::SetMetadataProvider(IMetadataProvider* provider) {
    KESWRITER_SENTRY("CKesWriter::SetMetadataProvider");
    mpProvider = provider;
}

void CKesWriter::Begin(IConfigContext& context) {
    constexpr const char* FUNCTION = "CKesWriter::Begin";
    KESWRITER_SENTRY(FUNCTION);
    const CKesContext* place = PlaceOf(context, FUNCTION);
    if (place == nullptr) return;
    if (!mFileName.empty()) OpenFile();
    if (mpStream == nullptr) return Fail(FUNCTION, STR_FILE_OPEN_ERR, mFileName);
    WriteOut("version=" + place->Chip() + "\n");
}

void CKesWriter::OpenFile() {
    mpFile = std::make_unique<files::OutputStream>(mFileName);
    if (!*mpFile) mpFile.reset();
    mpStream = mpFile.get();
}

void CKesWriter::WriteOut(std::string_view text) {
    if (mpStream == nullptr) return;
    mpStream->write(text.data(), static_cast<std::streamsize>(text.size()));
    // Nobody looks at a file before its end.
    if (!mpFile) mpStream->flush();
}

void CKesWriter::End(IConfigContext& /*context*/) {
    constexpr const char* FUNCTION = "CKesWriter::End";
    KESWRITER_SENTRY(FUNCTION);
    if (!mpFile) return;
    const bool written = mpFile->Close();
    mpStream = nullptr;
    mpFile.reset();
    if (!written) Fail(FUNCTION, STR_FILE_WRITE_ERR, mFileName);
}

void CKesWriter::BeginSubsystem(IConfigContext& context) {
    constexpr const char* FUNCTION = "CKesWriter::BeginSubsystem";
    KESWRITER_SENTRY(FUNCTION);
    const CKesContext* place = PlaceOf(context, FUNCTION);
    if (place == nullptr) return;
    std::string name(UNKNOWN_SUBSYSTEM);
    if (const std::string_view canonical = CanonicalName(place->SubsystemType()); !canonical.empty()) {
        GetSubsystemName(context, std::string(canonical), name);
    }
    const auto store = static_cast<std::uint32_t>(place->Store());
    std::string text = "\n";
    text.append(BANNER).append("\n");
    if (place->Device() == IStoreManager::DEVICE_EEPROM) {
        text.append("file=").append(name);
        CKesFormat::AppendDecimal(text, std::uint64_t{store & 0xFFFFU});
    } else {
        text.append("subsystem=").append(name);
        text.append("\ndevice=").append(DeviceText(place->Device()));
        text.append("\nstore=");
        CKesFormat::AppendHexadecimal(text, store, 4);
    }
    WriteOut(text += '\n');
}

void CKesWriter::GetSubsystemName(IConfigContext& context, const std::string& canonical,
                                  std::string& result) {
    KESWRITER_SENTRY("CKesWriter::GetSubsystemName");
    result = canonical;
    if (mpProvider == nullptr) return;
    for (const ISubsystemInfo* info : mpProvider->SubsystemInfos(context)) {
        if (info->Name() != canonical) continue;
        if (std::string alias = info->Alias(); !alias.empty()) result = std::move(alias);
        return;
    }
}

void CKesWriter::EndSubsystem(IConfigContext& /*context*/) { KESWRITER_SENTRY("CKesWriter::EndSubsystem"); }

void CKesWriter::BeginElement(IConfigContext& context) {
    KESWRITER_SENTRY("CKesWriter::BeginElement");
    mDepth = 0;
    mRaw = false;
    mArrayOpen = false;
    mNoPayloadYet = true;
    mFirstField = true;
    mSimple = context.TagMatches(STR_TXT_SIMPLE_MODE, STR_TRUE);
}

void CKesWriter::WriteUid(std::uint32_t uid, IConfigContext& context) {
    KESWRITER_SENTRY("CKesWriter::WriteUid");
    mUid = uid;
    if (mpProvider != nullptr) {
        const IMetadata& metadata = mpProvider->MetadataByPsid(uid, context, false);
        if (metadata.IsValid()) {
            const std::string label = mSimple ? std::string() : metadata.Label();
            if (!label.empty()) mBuffer.append("\n# ").append(label).append("\n");
            mBuffer += metadata.Name();
            return;
        }
        if (!mSimple) mBuffer += '\n';
    }
    CKesFormat::AppendDecimal(mBuffer, std::uint64_t{uid});
}

void CKesWriter::WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t /*size*/,
                                 IConfigContext& /*context*/) {
    KESWRITER_SENTRY("CKesWriter::WriteHeaderInfo");
    if (name != STR_HEADER_INDEX) return;
    std::int32_t index = 0;
    std::memcpy(&index, value, sizeof index);
    mBuffer += '.';
    CKesFormat::AppendDecimal(mBuffer, std::int64_t{index});
}

void CKesWriter::EndElement(IConfigContext& context) {
    KESWRITER_SENTRY("CKesWriter::EndElement");
    if (mNoPayloadYet) {
        mBuffer.clear();
    } else if (mRaw) {
        mBuffer += " %";
    } else if (IsArray(context)) {
        mBuffer += '}';
    }
    WriteOut(mBuffer += '\n');
    mBuffer.clear();
}

void CKesWriter::WritePayload(IPayload& payload, IConfigContext& context) {
    KESWRITER_SENTRY("CKesWriter::WritePayload");
    if (mpProvider != nullptr) {
        if (mNoPayloadYet) BeginValue(payload, context);
        if (!mFirstField) AppendSeparator(payload);
        AppendValue(payload, context);
    }
    mFirstField = false;
}

/// Asked anew for each brace: the provider may answer differently once values have been written.
bool CKesWriter::IsArray(IConfigContext& context) const {
    return mpProvider != nullptr && mpProvider->MetadataByPsid(mUid, context, false).IsArray();
}

/// The first payload settles the form of the element.
void CKesWriter::BeginValue(const IPayload& payload, IConfigContext& context) {
    mRaw = payload.Type() == PAYLOAD_TYPE_RAW || context.TagMatches(STR_RAW_MODE, STR_TRUE);
    mBuffer += " = ";
    if (mRaw) {
        mBuffer += "% ";
    } else if (IsArray(context)) {
        mArrayOpen = true;
        mBuffer += '{';
    }
    mNoPayloadYet = false;
}

void CKesWriter::AppendSeparator(const IPayload& payload) {
    if (!mRaw) {
        mBuffer += ',';
        // A struct begins with a continuation of its own.
        if (!mSimple && !mArrayOpen && payload.Type() != PAYLOAD_TYPE_STRUCT) AppendContinuation();
    }
    mBuffer += ' ';
}

void CKesWriter::AppendValue(IPayload& payload, IConfigContext& context) {
    if (IsComposite(payload)) {
        if (payload.Type() == PAYLOAD_TYPE_STRUCT) return StructPayload(payload, context);
        // An array within a struct, which has the type of its items.
        return ComplexFields(payload, context);
    }
    switch (payload.Type()) {
        case PAYLOAD_TYPE_INT8:
            return IntPayload<std::int8_t>(payload);
        case PAYLOAD_TYPE_INT16:
            return IntPayload<std::int16_t>(payload);
        case PAYLOAD_TYPE_INT32:
            return IntPayload<std::int32_t>(payload);
        case PAYLOAD_TYPE_INT64:
            return IntPayload<std::int64_t>(payload);
        case PAYLOAD_TYPE_UINT8:
            return IntPayload<std::uint8_t>(payload);
        case PAYLOAD_TYPE_UINT16:
            return IntPayload<std::uint16_t>(payload);
        case PAYLOAD_TYPE_UINT32:
            return IntPayload<std::uint32_t>(payload);
        case PAYLOAD_TYPE_UINT64:
            return IntPayload<std::uint64_t>(payload);
        case PAYLOAD_TYPE_STRING:
            return StringPayload(payload);
        case PAYLOAD_TYPE_ENUM:
            return EnumPayload(payload);
        default:
            break;
    }
}

template <typename T>
void CKesWriter::IntPayload(const IPayload& payload) {
    // The type tells the class, here and for strings and enumerators.
    const IMetadata* metadata = static_cast<const CPayload<T>&>(payload).Metadata();
    const std::string format = FormatOf(metadata);
    CKesFormat(format, payload.Type()).Append(mBuffer, *static_cast<const T*>(payload.RawData()));
    AppendFieldComment(metadata);
}

void CKesWriter::StringPayload(const IPayload& payload) {
    const auto& bytes = *static_cast<const std::string*>(payload.RawData());
    const std::string format = FormatOf(static_cast<const CStringPayload&>(payload).Metadata());
    if (format == STR_UNICODE_STRING) {
        AppendQuoted(mBuffer, bytes);
    } else if (format == STR_MACADDR_STRING) {
        AppendMacAddress(mBuffer, bytes);
    } else {
        AppendOctets(mBuffer, bytes);
    }
}

void CKesWriter::EnumPayload(const IPayload& payload) {
    const auto& enumerator = static_cast<const CEnumPayload&>(payload);
    mBuffer += enumerator.GetName();
    AppendFieldComment(enumerator.Metadata());
}

void CKesWriter::StructPayload(const IPayload& payload, IConfigContext& context) {
    const bool inArray = mArrayOpen;
    if (!mSimple) {
        if (inArray) ++mDepth;
        AppendContinuation();
    }
    mBuffer += '{';
    if (!mSimple) {
        ++mDepth;
        AppendContinuation();
        mBuffer += ' ';
    }
    ComplexFields(payload, context);
    if (!mSimple) {
        --mDepth;
        AppendContinuation();
        if (inArray) --mDepth;
    }
    mBuffer += '}';
}

void CKesWriter::ComplexFields(const IPayload& payload, IConfigContext& context) {
    mFirstField = true;
    bool open = false;                // the brace of a field array
    const IMetadata* last = nullptr;  // of the last field that had any
    bool firstOfList = true;
    for (IPayload* field : static_cast<const CComplexPayload&>(payload).GetFields()) {
        if (const IMetadata* metadata = MetadataOf(*field)) {
            if (open && metadata != last && metadata->Name() != last->Name()) {
                mBuffer += '}';
                open = false;
            }
            if (!open && metadata->IsArray() && field->Type() != PAYLOAD_TYPE_STRUCT) {
                mBuffer += firstOfList ? " {" : ", {";
                open = true;
                mFirstField = true;
            }
            last = metadata;
        }
        field->Write(*this, context);
        firstOfList = false;
    }
    if (open) mBuffer += '}';
}

void CKesWriter::AppendContinuation() {
    mBuffer += " \\\n";
    mBuffer.append(std::size_t{2} * mDepth, ' ');
}

/// The name of a field; values of keys have none, as their depth is 0.
void CKesWriter::AppendFieldComment(const IMetadata* metadata) {
    if (mDepth == 0 || metadata == nullptr) return;
    mBuffer.append(" /* ").append(metadata->Name()).append(" */ ");
}

}  // namespace VemoKesConfigTools
