#include "model/Payloads.h"

#include <algorithm>

namespace VemoKesConfigTools {

bool CEnumPayload::operator==(const IPayload& other) const {
    if (!CPayload::operator==(other)) return false;
    return static_cast<const CEnumPayload&>(other).mName == mName;
}

CComplexPayload::~CComplexPayload() {
    for (const IPayload* field : mFields) delete field;
}

bool CComplexPayload::Write(IConfigWriter& writer, IConfigContext& context) {
    writer.WritePayload(*this, context);
    return true;
}

bool CComplexPayload::operator==(const IPayload& other) const {
    const auto* composite = dynamic_cast<const CComplexPayload*>(&other);
    if (composite == nullptr || composite->mType != mType) return false;
    return std::equal(mFields.begin(), mFields.end(), composite->mFields.begin(), composite->mFields.end(),
                      [](const IPayload* left, const IPayload* right) { return *left == *right; });
}

std::uint32_t CComplexPayload::Length() const {
    std::uint32_t length = 0;
    for (const IPayload* field : mFields) length += field->Length();
    return length;
}

std::string CComplexPayload::ToString() const {
    std::string text = "{";
    for (const IPayload* field : mFields) {
        if (text.size() > 1) text += ", ";
        text += field->ToString();
    }
    return text + "}";
}

std::uint32_t CComplexPayload::WriteToMem(void* memory, std::uint32_t size) const {
    if (size < Length()) return 0;
    auto* bytes = static_cast<unsigned char*>(memory);
    std::uint32_t written = 0;
    for (const IPayload* field : mFields) written += field->WriteToMem(bytes + written, size - written);
    return written;
}

}  // namespace VemoKesConfigTools
