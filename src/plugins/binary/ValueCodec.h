#pragma once

#include "plugins/binary/Bytes.h"

#include <memory>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

class IMetadata;
class IPayload;

/// The values of one key, on their way from a reader to their element.
class PayloadList {
public:
    PayloadList() = default;
    PayloadList(PayloadList&&) = default;
    PayloadList& operator=(PayloadList&&) = delete;
    ~PayloadList();

    void Reserve(std::size_t count) { mPayloads.reserve(count); }
    void Add(std::unique_ptr<IPayload> payload);
    const std::vector<IPayload*>& Get() const { return mPayloads; }
    /// Hands the payloads over.
    std::vector<IPayload*> Release() { return std::exchange(mPayloads, {}); }

private:
    std::vector<IPayload*> mPayloads;  // as elements take them, so that none is allocated twice
};

/// Appends the values of a key: their count, then each as a tree. The record may be one that is not valid.
/// Throws `Refusal` for a payload of a class that has no form here.
void AppendValues(ByteWriter& bytes, const std::vector<const IPayload*>& payloads, const IMetadata& metadata);

/// Reads the values of a key as they are. Throws `Refusal`.
PayloadList ReadValues(ByteReader& bytes);

/// Reads the values of a key that the metadata knows: but for those that were given raw, they must have the
/// form, count and range that it asks for, and use it. Throws `Refusal`.
PayloadList ReadValues(ByteReader& bytes, const IMetadata& metadata);

}  // namespace VemoKesConfigTools
