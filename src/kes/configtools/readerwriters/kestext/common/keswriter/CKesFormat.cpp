#include "kes/configtools/readerwriters/kestext/common/keswriter/CKesFormat.h"

#include "model/Words.h"

#include <charconv>
#include <iomanip>
#include <iterator>
#include <ostream>

namespace VemoKesConfigTools {

namespace {

constexpr char DIGITS[] = "0123456789ABCDEF";

template <typename T>
void AppendNumber(std::string& text, T value) {
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace

bool CKesFormat::IsDecimal() const {
    if (mFormat.empty()) return mType >= PAYLOAD_TYPE_INT8 && mType <= PAYLOAD_TYPE_INT64;
    return mFormat == STR_SIGNED_DECIMAL_STRING || mFormat == STR_UNSIGNED_DECIMAL_STRING;
}

std::ostream& CKesFormat::operator()(std::ostream& stream) const {
    if (IsDecimal()) return stream << std::dec;
    return stream << "0x" << std::setw(2) << std::setfill('0') << std::hex << std::uppercase;
}

void CKesFormat::AppendDecimal(std::string& text, std::int64_t value) { AppendNumber(text, value); }

void CKesFormat::AppendDecimal(std::string& text, std::uint64_t value) { AppendNumber(text, value); }

void CKesFormat::AppendHexadecimal(std::string& text, std::uint64_t value, std::uint32_t digits) {
    char reversed[16];
    std::uint32_t count = 0;
    for (; value != 0; value >>= 4U) reversed[count++] = DIGITS[value & 0xFU];
    text += "0x";
    if (count < digits) text.append(digits - count, '0');
    text.append(std::make_reverse_iterator(reversed + count), std::make_reverse_iterator(reversed));
}

void CKesFormat::AppendByte(std::string& text, char byte) {
    const auto bits = static_cast<unsigned char>(byte);
    text += DIGITS[bits >> 4U];
    text += DIGITS[bits & 0xFU];
}

}  // namespace VemoKesConfigTools
