#pragma once

#include "messages/Export.h"
#include "model/CPayload.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// The eight integer payloads, each of one width and sign.
template <typename T, PayloadTypeEnum Type>
class CIntegerPayload final : public CPayload<T> {
public:
    explicit CIntegerPayload(T value) : CPayload<T>(Type, value) {}
};

using CInt8Payload = CIntegerPayload<std::int8_t, PAYLOAD_TYPE_INT8>;
using CInt16Payload = CIntegerPayload<std::int16_t, PAYLOAD_TYPE_INT16>;
using CInt32Payload = CIntegerPayload<std::int32_t, PAYLOAD_TYPE_INT32>;
using CInt64Payload = CIntegerPayload<std::int64_t, PAYLOAD_TYPE_INT64>;
using CUint8Payload = CIntegerPayload<std::uint8_t, PAYLOAD_TYPE_UINT8>;
using CUint16Payload = CIntegerPayload<std::uint16_t, PAYLOAD_TYPE_UINT16>;
using CUint32Payload = CIntegerPayload<std::uint32_t, PAYLOAD_TYPE_UINT32>;
using CUint64Payload = CIntegerPayload<std::uint64_t, PAYLOAD_TYPE_UINT64>;

/// A byte string, which may hold any bytes.
class KES_API CStringPayload final : public CPayload<std::string> {
public:
    /// `octets` tells that the value is a string of bytes in no particular encoding. All values are.
    CStringPayload(std::string value, bool octets) : CPayload(PAYLOAD_TYPE_STRING, std::move(value)) {
        static_cast<void>(octets);
    }
    /// Number of bytes.
    std::uint32_t Length() const override {
        return static_cast<std::uint32_t>(static_cast<const std::string*>(RawData())->size());
    }
};

/// An enumerator, with its name as the metadata spells it.
class KES_API CEnumPayload final : public CPayload<std::int32_t> {
public:
    CEnumPayload(std::string name, std::int32_t value)
        : CPayload(PAYLOAD_TYPE_ENUM, value), mName(std::move(name)) {}

    bool operator==(const IPayload& other) const override;
    std::string ToString() const override { return mName; }
    std::int32_t GetValue() override { return CPayload::GetValue(); }
    using CPayload::operator!=;
    virtual bool operator!=(const IPayload& other) const { return !(*this == other); }
    const std::string& GetName() const { return mName; }

private:
    std::string mName;
};

/// A composite of other payloads, which it owns: a struct, or an array of values within a struct, of the type
/// of its items.
class KES_API CComplexPayload final : public IPayload, public IMetadataUser {
public:
    explicit CComplexPayload(PayloadTypeEnum type) : mType(type) {}
    CComplexPayload(const CComplexPayload&) = delete;
    CComplexPayload& operator=(const CComplexPayload&) = delete;
    ~CComplexPayload() override;

    bool Write(IConfigWriter& writer, IConfigContext& context) override;
    bool operator==(const IPayload& other) const override;
    PayloadTypeEnum Type() const override { return mType; }
    std::uint32_t Length() const override;
    /// The vector of fields.
    const void* RawData() const override { return &mFields; }
    std::string ToString() const override;
    std::uint32_t WriteToMem(void* memory, std::uint32_t size) const override;

    void Use(const IMetadata& metadata) override { mpMetadata = &metadata; }
    const IMetadata* Metadata() const override { return mpMetadata; }

    /// Makes room for this many fields in all.
    void Reserve(std::size_t fields) { mFields.reserve(fields); }
    /// Appends a field and takes it over.
    void AddField(IPayload* field) { mFields.push_back(field); }
    /// The fields in the order in which they were added.
    const std::vector<IPayload*>& GetFields() const { return mFields; }

private:
    const IMetadata* mpMetadata = nullptr;
    PayloadTypeEnum mType;
    std::vector<IPayload*> mFields;
};

}  // namespace VemoKesConfigTools
