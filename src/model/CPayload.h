#pragma once

#include "model/IConfigWriter.h"
#include "model/IMetadataUser.h"
#include "model/IPayload.h"

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

namespace VemoKesConfigTools {

/// A payload with a value of type `T`: an integer of fixed width or a byte string. The metadata it is told to
/// use is not owned.
template <typename T>
class CPayload : public IPayload, public IMetadataUser {
public:
    explicit CPayload(PayloadTypeEnum type, T value) : mType(type), mValue(std::move(value)) {}

    bool Write(IConfigWriter& writer, IConfigContext& context) override {
        writer.WritePayload(*this, context);
        return true;
    }
    bool operator==(const IPayload& other) const override {
        // A composite that holds an array has the type of its items, so the class has to be asked for.
        const auto* same = dynamic_cast<const CPayload*>(&other);
        return same != nullptr && same->mType == mType && same->mValue == mValue;
    }
    PayloadTypeEnum Type() const override { return mType; }
    std::uint32_t Length() const override { return sizeof(T); }
    const void* RawData() const override { return &mValue; }
    std::string ToString() const override {
        if constexpr (std::is_same_v<T, std::string>) {
            return mValue;
        } else {
            return std::to_string(mValue);
        }
    }
    std::uint32_t WriteToMem(void* memory, std::uint32_t size) const override {
        const std::uint32_t length = Length();
        if (size < length) return 0;
        if constexpr (std::is_same_v<T, std::string>) {
            if (length != 0) std::memcpy(memory, mValue.data(), length);
        } else {
            auto* bytes = static_cast<unsigned char*>(memory);
            auto rest = static_cast<std::make_unsigned_t<T>>(mValue);
            for (std::uint32_t i = 0; i < length; ++i) {
                bytes[i] = static_cast<unsigned char>(rest & 0xFFU);
                rest = static_cast<std::make_unsigned_t<T>>(static_cast<std::uint64_t>(rest) >> 8U);
            }
        }
        return length;
    }

    virtual bool operator!=(const CPayload& other) const {
        return !(*this == static_cast<const IPayload&>(other));
    }
    virtual void SetValue(T value) { mValue = std::move(value); }
    virtual T GetValue() { return mValue; }

    void Use(const IMetadata& metadata) override { mpMetadata = &metadata; }
    const IMetadata* Metadata() const override { return mpMetadata; }

private:
    const IMetadata* mpMetadata = nullptr;
    PayloadTypeEnum mType;
    T mValue;
};

}  // namespace VemoKesConfigTools
