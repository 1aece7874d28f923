#pragma once

#include "plugins/binary/Bytes.h"
#include "plugins/binary/ValueCodec.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

class CElement;
class CKesContext;
class IMetadataProvider;
class IPayload;

/// Where the keys of a block lie.
struct BinaryPlace {
    std::int32_t subsystem = -1;  ///< a value of `SubsystemTypes`
    std::int32_t device = -1;     ///< a value of `IStoreManager::DEVICE`
    std::int32_t store = 0;
    std::optional<std::int32_t> layer;
    std::uint16_t order = 0;  ///< of the store in the list of stores, 0 for none

    bool operator==(const BinaryPlace&) const = default;
};

/// A place with its keys in their encoded form.
struct EncodedPlace {
    BinaryPlace place;
    std::uint32_t keyCount = 0;
    std::string records;
};

/// A place with its keys as elements.
struct DecodedPlace {
    struct Key {
        std::unique_ptr<CElement> element;
        bool another = false;  ///< stands behind one of the same key
    };
    BinaryPlace place;
    std::vector<Key> keys;
};

/// One encoded key. The views live as long as the bytes they were split from.
struct KeyRecord {
    std::string_view all;
    std::string_view key;       ///< number and indexes: equal for equal keys
    std::string_view payloads;  ///< their count and themselves, as `DecodePayloads` takes them
    bool another = false;       ///< stands behind one of the same key
};

/// Appends a place block: place, number of keys, size of the records, records.
void AppendPlace(std::string& bytes, const EncodedPlace& encoded);
/// Reads a place block, without looking into the records. Throws `Refusal`.
EncodedPlace ReadPlace(ByteReader& bytes);

/// Cuts the records of a place apart. Throws `Refusal`.
std::vector<KeyRecord> SplitRecords(const EncodedPlace& place);
/// The values of a record, without any metadata. Throws `Refusal`.
PayloadList DecodePayloads(std::string_view payloads);

/// Appends a key. `payloads` is what `AppendValues` has made, or a part of a record. `another` says that a
/// key of the same number and indexes stands before it.
void AppendRecord(EncodedPlace& place, std::uint32_t psid, std::span<const std::uint32_t> indices,
                  std::string_view payloads, bool another);

/// Sets the context to the place, order and layer included.
void SetPlace(CKesContext& context, const BinaryPlace& place);

/// Makes elements of the records of a place. What the metadata knows uses it and must hold against it as a
/// text must; what it does not know is taken as it is. The context is set to the place. Throws `Refusal`.
DecodedPlace DecodePlace(const EncodedPlace& encoded, IMetadataProvider& provider, CKesContext& context);

/// The words for a place in messages: "bt, eeprom, store 3".
std::string Describe(const BinaryPlace& place);

}  // namespace VemoKesConfigTools
