#pragma once

#include "messages/Export.h"
#include "model/IMetadataUser.h"
#include "model/IPayload.h"
#include "model/IWritable.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// One key of one subsystem with its payloads, which it owns. An element without arguments stands for "not
/// found". Slot order is contract.
class KES_API CElement : public IWritable, public IMetadataUser {
public:
    /// The element that is not valid.
    CElement() = default;
    /// Takes over the payloads. `changed` tells that the element differs from what was read.
    CElement(std::uint32_t psid, std::span<IPayload* const> payloads, bool changed);
    CElement(const CElement&) = delete;
    CElement& operator=(const CElement&) = delete;

    /// Drives the writer: begin, number, indexes, payloads, end. True when no error was stored meanwhile.
    bool Write(IConfigWriter& writer, IConfigContext& context) override;
    ~CElement() override;
    /// Same key and equal payloads.
    virtual bool operator==(const CElement& other) const;
    virtual bool operator!=(const CElement& other) const;
    /// The psid in decimal, then "." and each index in decimal.
    virtual std::string KeyString() const;
    /// Key and values for people to read.
    virtual std::string ToString() const;
    /// Size of the values and indexes in bytes.
    virtual std::uint32_t Size() const;
    /// False for the element that stands for "not found".
    virtual bool IsValid() const;
    /// Whether the element was changed since it was read.
    virtual bool HasChanged() const;
    /// Deletes all payloads.
    virtual void ClearPayload();
    /// Whether both are elements of one key.
    virtual bool Same(CElement& other) const;
    /// The indexes of the key; none for a plain one.
    virtual std::span<const std::uint32_t> Indices() const;

    void Use(const IMetadata& metadata) override { mpMetadata = &metadata; }
    const IMetadata* Metadata() const override { return mpMetadata; }

    std::uint32_t PsId() const { return mPsid; }
    /// The running number of the write that brought the element into its configuration: the larger one is the
    /// newer one. 0 outside of a configuration.
    std::uint64_t WriteNumber() const { return mWriteNumber; }
    void SetWriteNumber(std::uint64_t number) {
        mWriteNumber = number & ((std::uint64_t{1} << WRITE_NUMBER_BITS) - 1);
    }
    /// The values in order. Valid until the element changes or goes.
    std::span<IPayload* const> Payloads() const {
        return {mCount == 1 ? &mValues.one : mValues.many, mCount};
    }

private:
    void DeletePayloads();

    // A configuration holds very many elements, and most have one value: that one takes no list.
    union {
        IPayload* one;
        IPayload** many;
    } mValues{nullptr};
    std::uint32_t mCount = 0;
    std::uint32_t mPsid = 0;
    const IMetadata* mpMetadata = nullptr;
    // One word with the number: these fields must not make the element larger.
    static constexpr unsigned WRITE_NUMBER_BITS = 62;
    std::uint64_t mWriteNumber : WRITE_NUMBER_BITS = 0;
    bool mValid : 1 = false;
    bool mChanged : 1 = false;
};

/// The key string of a key number and its indexes.
KES_API std::string MakeKeyString(std::uint32_t psid, std::span<const std::uint32_t> indices);

/// The reverse of `MakeKeyString`; hosts give their numbers as signed ones, so these are taken too. False for
/// a text that is no key string.
KES_API bool ParseKeyString(const std::string& key, std::uint32_t& psid, std::vector<std::uint32_t>& indices);

}  // namespace VemoKesConfigTools
