#pragma once

namespace VemoKesConfigTools {

class IMetadata;

/// What can be told its metadata. Slot order is contract.
class IMetadataUser {
public:
    /// Remembers the record without owning it.
    virtual void Use(const IMetadata& metadata) = 0;
    /// The remembered record, null before `Use`.
    virtual const IMetadata* Metadata() const = 0;
    virtual ~IMetadataUser() = default;

protected:
    IMetadataUser() = default;
    IMetadataUser(const IMetadataUser&) = default;
    IMetadataUser& operator=(const IMetadataUser&) = default;
};

}  // namespace VemoKesConfigTools
