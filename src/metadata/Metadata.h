#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "messages/Export.h"
#include "metadata/Enumerations.h"
#include "metadata/MetadataDetails.h"
#include "metadata/TableIndex.h"
#include "model/MetadataTypes.h"

#include <any>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

/// The metadata of one key or struct field, for the host: a copy that outlives its provider. Texts that read
/// "NULL" are returned as null.
class KES_API Metadata {
public:
    static constexpr std::string_view STR_NULL = "NULL";
    using TableIndexListRef = HostListRef<std::shared_ptr<TableIndex>>;

    Metadata(std::int32_t uid, std::int32_t psid, HostString name, HostString label, SimpleElementTypes type,
             AccessRights accessRights, bool isInternal, bool isArray, std::int32_t arrayMinLength,
             std::int32_t arrayMaxLength, HostString description, std::int64_t minimum, std::int64_t maximum,
             VemoKesConfigTools::MetadataTypeEnum metadataType, HostString format,
             HostString descriptionInternal, HostString oid, HostString sourceReference, HostString units,
             std::uint32_t numIndexes);

    /// The record's number within the metadata.
    std::int32_t Uid() const { return mUid; }
    /// The key number in configurations, texts and devices.
    std::int32_t Psid() const { return mPsid; }
    HostString Name() const { return NullRule(mName); }
    HostString Label() const { return NullRule(mLabel); }
    SimpleElementTypes SimpleType() const { return mSimpleType; }
    AccessRights AccessRight() const { return mAccessRight; }
    bool IsInternal() const { return mIsInternal; }
    bool IsArray() const { return mIsArray; }
    std::int32_t ArrayMinLength() const { return mArrayMinLength; }
    std::int32_t ArrayMaxLength() const { return mArrayMaxLength; }
    HostString Description() const { return NullRule(mDescription); }
    /// Minimum value; for a string key minimum length in octets.
    std::int64_t Min() const { return mMinimum; }
    /// Maximum value; for a string key maximum length in octets.
    std::int64_t Max() const { return mMaximum; }
    MetadataTypes MetadataType() const { return mMetadataType; }
    HostString Format() const { return NullRule(mFormat); }
    HostString DescriptionInternal() const { return NullRule(mDescriptionInternal); }
    HostString Oid() const { return NullRule(mOid); }
    HostString SourceReference() const { return NullRule(mSourceReference); }
    HostString Units() const { return NullRule(mUnits); }
    std::uint32_t NumIndexes() const { return mNumIndexes; }
    /// The indexes of the key, in order; null for a key without indexes.
    const TableIndexListRef& TableIndexes() const { return mTableIndexes; }
    /// Null until `NetMetadataProvider::GetMetadataDetails` has been called for this record.
    const std::shared_ptr<MetadataDetails>& Details() const { return mDetails; }
    void SetDetails(std::shared_ptr<MetadataDetails> details) { mDetails = std::move(details); }
    /// An object of the host; the library does not use it.
    const std::any& Tag() const { return mTag; }
    void Tag(std::any tag) { mTag = std::move(tag); }

    /// For use within the library only.
    void SetElementType(SimpleElementTypes type) { mSimpleType = type; }
    /// Only for a record with indexes. For use within the library only.
    void AddTableIndex(std::shared_ptr<TableIndex> index) { mTableIndexes->push_back(std::move(index)); }
    /// The access right of this name; `Unknown` for any other text.
    static AccessRights GetAccessRights(std::string_view text);
    /// The type of this name; `None` for any other text.
    static SimpleElementTypes GetSimpleType(std::string_view text);

private:
    static HostString NullRule(const HostString& text);

    std::int32_t mUid;
    std::int32_t mPsid;
    HostString mName;
    HostString mLabel;
    SimpleElementTypes mSimpleType;
    AccessRights mAccessRight;
    bool mIsInternal;
    bool mIsArray;
    std::int32_t mArrayMinLength;
    std::int32_t mArrayMaxLength;
    HostString mDescription;
    std::int64_t mMinimum;
    std::int64_t mMaximum;
    MetadataTypes mMetadataType;
    HostString mFormat;
    HostString mDescriptionInternal;
    HostString mOid;
    HostString mSourceReference;
    HostString mUnits;
    std::uint32_t mNumIndexes;
    TableIndexListRef mTableIndexes;
    std::shared_ptr<MetadataDetails> mDetails;
    std::any mTag;
};

}  // namespace VEMO::Kes::ConfigurationTools
