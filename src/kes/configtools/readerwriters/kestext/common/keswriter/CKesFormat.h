#pragma once

#include "model/IPayload.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>

namespace VemoKesConfigTools {

/// Whether an integer is shown in decimal or in hexadecimal form, by its metadata's format text and its type.
/// A short-lived object: it refers to the format text.
class CKesFormat {
public:
    CKesFormat(const std::string& format, PayloadTypeEnum type) : mFormat(format), mType(type) {}

    /// Makes the stream show the next integer in this form, and writes the prefix of the hexadecimal one.
    std::ostream& operator()(std::ostream& stream) const;

    /// Appends the integer as the stream would show it. Characters are numbers here.
    template <typename T>
    void Append(std::string& text, T value) const {
        // A signed 8-bit number is widened first, so that a negative one has four hexadecimal digits.
        using Shown =
            std::conditional_t<sizeof(T) == 1,
                               std::conditional_t<std::is_signed_v<T>, std::int16_t, std::uint16_t>, T>;
        const auto shown = static_cast<Shown>(value);
        const auto bits = static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<Shown>>(shown));
        if (!IsDecimal()) {
            AppendHexadecimal(text, bits, 2);
        } else if constexpr (std::is_signed_v<T>) {
            AppendDecimal(text, std::int64_t{value});
        } else {
            AppendDecimal(text, bits);
        }
    }

    static void AppendDecimal(std::string& text, std::int64_t value);
    static void AppendDecimal(std::string& text, std::uint64_t value);
    /// "0x" and upper-case digits, at least `digits` of them.
    static void AppendHexadecimal(std::string& text, std::uint64_t value, std::uint32_t digits);
    /// Two upper-case digits.
    static void AppendByte(std::string& text, char byte);

private:
    bool IsDecimal() const;

    const std::string& mFormat;
    PayloadTypeEnum mType;
};

}  // namespace VemoKesConfigTools
