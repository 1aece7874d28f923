#pragma once

#include "messages/Export.h"
#include "model/MetadataTypes.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

class CTableIndex;
class IMetadataDetail;

/// What is known of one key or struct field. Records belong to their provider and live as long as it. The
/// reserved slots keep their places in the order, which is contract.
class KES_API IMetadata {
public:
    /// The record's own number on the metadata side.
    virtual std::int32_t Uid() const = 0;
    /// The key number in configurations, texts and devices; 0 when the record has none.
    virtual std::uint32_t Psid() const = 0;
    virtual std::string Name() const = 0;
    virtual std::string Label() const = 0;
    virtual std::int32_t Reserved4() const { return 0; }
    virtual bool IsInternal() const = 0;
    /// "signed_decimal", "unsigned_decimal", "hexadecimal", "unicode_string", "mac_addr" or empty.
    virtual std::string Format() const = 0;
    /// Lowest value of an integer key, or least length in octets of a string key.
    virtual std::int64_t Min() const = 0;
    /// Highest value of an integer key, or greatest length in octets of a string key.
    virtual std::int64_t Max() const = 0;
    virtual std::string Oid() const = 0;
    /// "uint8" to "uint64", "int8" to "int64", "int", "integer", "string", "octet_string", or the name of the
    /// key's enum or struct type.
    virtual std::string TypeName() const = 0;
    virtual std::string Units() const = 0;
    virtual bool IsArray() const = 0;
    virtual std::int64_t ArrayMinLength() const = 0;
    virtual std::int64_t ArrayMaxLength() const = 0;
    virtual std::int32_t Reserved15() const { return 0; }
    virtual std::string Description() const = 0;
    virtual std::string DescriptionInternal() const = 0;
    virtual std::string SourceReference() const = 0;
    virtual std::int32_t Reserved19() const { return 0; }
    /// "not_accessible", "read_only", "read_write" or "write_only".
    virtual std::string AccessRightName() const = 0;
    virtual std::int32_t Reserved21() const { return 0; }
    virtual std::int32_t Reserved22() const { return 0; }
    virtual MetadataTypeEnum MetadataType() const = 0;
    /// Enumerators or struct fields, owned by the record; null when nothing is known.
    virtual const IMetadataDetail* Detail() const = 0;
    /// False for the record that stands for "no such key".
    virtual bool IsValid() const = 0;
    /// How many indexes a table key takes; 0 for a plain key.
    virtual std::uint32_t NumIndexes() const = 0;
    /// The description of an index, position counted from 1 to `NumIndexes()`; null beyond.
    virtual const CTableIndex* TableIndexAt(std::uint16_t position) const = 0;

protected:
    IMetadata() = default;
    IMetadata(const IMetadata&) = default;
    IMetadata& operator=(const IMetadata&) = default;
    ~IMetadata() = default;
};

}  // namespace VemoKesConfigTools
