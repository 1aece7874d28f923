#pragma once

#include "model/IMetadata.h"

namespace VemoKesConfigTools {

/// The record that stands for no metadata: not valid, internal, empty texts, zeros, metadata type 3, no
/// detail. One instance for the process.
class KES_API CNullMetadata final : public IMetadata {
public:
    static const CNullMetadata& Ref() { return mInstance; }

    std::int32_t Uid() const override { return 0; }
    std::uint32_t Psid() const override { return 0; }
    std::string Name() const override { return {}; }
    std::string Label() const override { return {}; }
    bool IsInternal() const override { return true; }
    std::string Format() const override { return {}; }
    std::int64_t Min() const override { return 0; }
    std::int64_t Max() const override { return 0; }
    std::string Oid() const override { return {}; }
    std::string TypeName() const override { return {}; }
    std::string Units() const override { return {}; }
    bool IsArray() const override { return false; }
    std::int64_t ArrayMinLength() const override { return 0; }
    std::int64_t ArrayMaxLength() const override { return 0; }
    std::string Description() const override { return {}; }
    std::string DescriptionInternal() const override { return {}; }
    std::string SourceReference() const override { return {}; }
    std::string AccessRightName() const override { return {}; }
    MetadataTypeEnum MetadataType() const override { return METADATA_TYPE_UNKNOWN; }
    const IMetadataDetail* Detail() const override { return nullptr; }
    bool IsValid() const override { return false; }
    std::uint32_t NumIndexes() const override { return 0; }
    const CTableIndex* TableIndexAt(std::uint16_t /*position*/) const override { return nullptr; }

private:
    CNullMetadata() = default;
    static const CNullMetadata mInstance;
};

}  // namespace VemoKesConfigTools
