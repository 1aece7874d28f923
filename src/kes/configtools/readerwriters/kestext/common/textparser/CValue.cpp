#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include "model/CSubsystemConfig.h"

namespace VemoKesConfigTools {

CParserError CValue::RemoveElement(const std::vector<std::uint32_t>& indices) {
    if (auto* subsystem = dynamic_cast<CSubsystemConfig*>(mpParseContext->mpElementObserver)) {
        subsystem->RemoveElement(mpMetadata->Psid(), &indices);
    }
    return PE_NONE;
}

std::string RangeDetail(std::int64_t lo, std::int64_t hi, const std::string& value) {
    if (lo == hi) return " must be " + std::to_string(lo);
    return " must be between " + std::to_string(lo) + " and " + std::to_string(hi) + " (val=" + value + ")";
}

}  // namespace VemoKesConfigTools
