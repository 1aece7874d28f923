#include "metadata/Metadata.h"

#include "metadata/RecordTrace.h"
#include "model/Words.h"

namespace VEMO::Kes::ConfigurationTools {

namespace {

template <typename Value>
struct NamedValue {
    std::string_view name;
    Value value;
};

template <typename Value, std::size_t N>
Value ValueOf(const NamedValue<Value> (&table)[N], std::string_view name, Value otherwise) {
    for (const NamedValue<Value>& entry : table) {
        if (entry.name == name) return entry.value;
    }
    return otherwise;
}

}  // namespace

Metadata::Metadata(std::int32_t uid, std::int32_t psid, HostString name, HostString label,
                   SimpleElementTypes type, AccessRights accessRights, bool isInternal, bool isArray,
                   std::int32_t arrayMinLength, std::int32_t arrayMaxLength, HostString description,
                   std::int64_t minimum, std::int64_t maximum,
                   VemoKesConfigTools::MetadataTypeEnum metadataType, HostString format,
                   HostString descriptionInternal, HostString oid, HostString sourceReference,
                   HostString units, std::uint32_t numIndexes)
    : mUid(uid),
      mPsid(psid),
      mName(std::move(name)),
      mLabel(std::move(label)),
      mSimpleType(type),
      mAccessRight(accessRights),
      mIsInternal(isInternal),
      mIsArray(isArray),
      mArrayMinLength(arrayMinLength),
      mArrayMaxLength(arrayMaxLength),
      mDescription(std::move(description)),
      mMinimum(minimum),
      mMaximum(maximum),
      mMetadataType(static_cast<MetadataTypes>(metadataType)),
      mFormat(std::move(format)),
      mDescriptionInternal(std::move(descriptionInternal)),
      mOid(std::move(oid)),
      mSourceReference(std::move(sourceReference)),
      mUnits(std::move(units)),
      mNumIndexes(numIndexes) {
    TraceRecord("VEMO::Kes::ConfigurationTools::Metadata::Metadata");
    if (numIndexes != 0) mTableIndexes = std::make_shared<std::vector<std::shared_ptr<TableIndex>>>();
}

HostString Metadata::NullRule(const HostString& text) {
    static const HostString null(STR_NULL);
    return text == null ? HostString() : text;
}

AccessRights Metadata::GetAccessRights(std::string_view text) {
    using namespace VemoKesConfigTools;
    static constexpr NamedValue<AccessRights> RIGHTS[] = {
        {STR_NOT_ACCESSIBLE, AccessRights::NotAccessible},
        {STR_READ_ONLY, AccessRights::ReadOnly},
        {STR_READ_WRITE, AccessRights::ReadWrite},
        {STR_WRITE_ONLY, AccessRights::WriteOnly},
    };
    return ValueOf(RIGHTS, text, AccessRights::Unknown);
}

SimpleElementTypes Metadata::GetSimpleType(std::string_view text) {
    using namespace VemoKesConfigTools;
    using enum SimpleElementTypes;
    // Note the difference: "int" has 32 bits, "integer" 64.
    static constexpr NamedValue<SimpleElementTypes> TYPES[] = {
        {STR_UINT8, UInt8}, {STR_UINT16, UInt16}, {STR_UINT32, UInt32}, {STR_UINT64, UInt64},
        {STR_INT8, Int8},   {STR_INT16, Int16},   {STR_INT32, Int32},   {STR_INT, Int32},
        {STR_INT64, Int64}, {STR_INTEGER, Int64}, {STR_STRING, String}, {STR_OCTET_STRING, String},
    };
    return ValueOf(TYPES, text, None);
}

}  // namespace VEMO::Kes::ConfigurationTools
