#include "model/CElement.h"

#include "messages/CTheMsgHnd.h"
#include "model/IConfigWriter.h"
#include "model/Words.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace VemoKesConfigTools {

CElement::CElement(std::uint32_t psid, std::span<IPayload* const> payloads, bool changed)
    : mPsid(psid), mValid(true), mChanged(changed) {
    if (payloads.size() == 1) {
        mValues.one = payloads.front();
    } else if (!payloads.empty()) {
        mValues.many = new IPayload*[payloads.size()];
        std::ranges::copy(payloads, mValues.many);
    }
    mCount = static_cast<std::uint32_t>(payloads.size());
}

CElement::~CElement() { DeletePayloads(); }

void CElement::DeletePayloads() {
    for (const IPayload* payload : Payloads()) delete payload;
    if (mCount > 1) delete[] mValues.many;
    mCount = 0;
}

bool CElement::Write(IConfigWriter& writer, IConfigContext& context) {
    static const std::string index(STR_HEADER_INDEX);
    const std::uint64_t errorsBefore = CTheMsgHnd::ErrorsEver();
    writer.BeginElement(context);
    writer.WriteUid(mPsid, context);
    for (const std::uint32_t value : Indices()) writer.WriteHeaderInfo(index, &value, sizeof value, context);
    for (IPayload* payload : Payloads()) payload->Write(writer, context);
    writer.EndElement(context);
    return CTheMsgHnd::ErrorsEver() == errorsBefore;
}

bool CElement::operator==(const CElement& other) const {
    return mValid == other.mValid && mPsid == other.mPsid && std::ranges::equal(Indices(), other.Indices()) &&
           std::ranges::equal(Payloads(), other.Payloads(),
                              [](const IPayload* left, const IPayload* right) { return *left == *right; });
}

bool CElement::operator!=(const CElement& other) const { return !(*this == other); }

std::string CElement::KeyString() const { return MakeKeyString(mPsid, Indices()); }

std::string CElement::ToString() const {
    std::string text = KeyString() + " =";
    for (const IPayload* payload : Payloads()) text += " " + payload->ToString();
    return text;
}

std::uint32_t CElement::Size() const {
    auto size = static_cast<std::uint32_t>(Indices().size_bytes());
    for (const IPayload* payload : Payloads()) size += payload->Length();
    return size;
}

bool CElement::IsValid() const { return mValid; }

bool CElement::HasChanged() const { return mChanged; }

void CElement::ClearPayload() {
    DeletePayloads();
    mChanged = true;
}

bool CElement::Same(CElement& other) const {
    return mPsid == other.mPsid && std::ranges::equal(Indices(), other.Indices());
}

std::span<const std::uint32_t> CElement::Indices() const { return {}; }

std::string MakeKeyString(std::uint32_t psid, std::span<const std::uint32_t> indices) {
    std::string key = std::to_string(psid);
    for (const std::uint32_t index : indices) key.append(1, '.').append(std::to_string(index));
    return key;
}

namespace {

/// A number of 32 bits, given as signed or unsigned. Null when there is none.
const char* ParseNumber(const char* from, const char* end, std::uint32_t& number) {
    std::int64_t value = 0;
    const auto [next, error] = std::from_chars(from, end, value);
    if (error != std::errc() || value < INT32_MIN || value > UINT32_MAX) return nullptr;
    number = static_cast<std::uint32_t>(value);
    return next;
}

}  // namespace

bool ParseKeyString(const std::string& key, std::uint32_t& psid, std::vector<std::uint32_t>& indices) {
    indices.clear();
    const char* const end = key.data() + key.size();
    const char* next = ParseNumber(key.data(), end, psid);
    while (next != nullptr && next != end) {
        if (*next != '.') return false;
        next = ParseNumber(next + 1, end, indices.emplace_back());
    }
    return next != nullptr;
}

}  // namespace VemoKesConfigTools
