#include "plugins/kesisp/CIspReader.h"

#include "model/CKesContext.h"
#include "model/IStoreManager.h"
#include "model/Words.h"
#include "plugins/binary/Refusal.h"

#include <charconv>
#include <cstdint>

namespace VemoKesConfigTools {

CImageReader::PlaceFilter CIspReader::FilterOf(const CKesContext& context) const {
    using Manager = IStoreManager;
    const std::string text = context.GetTag(STR_STORESET_FILTER);
    if (text.empty()) return CImageReader::FilterOf(context);
    std::int32_t set = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, set);
    if (error != std::errc() || stop != end)
        throw Refusal(STR_OPERATION_INVALID, "invalid store set \"" + text + "\", must be a number");
    if (set == Manager::DEVICE_NONE || set == Manager::DEVICE_ALL) return CImageReader::FilterOf(context);
    if (set == Manager::DEVICE_DEV_CFG) {
        return [](const BinaryPlace& place) {
            return place.device != Manager::DEVICE_CUR_CFG && place.device != Manager::DEVICE_FW_CFG;
        };
    }
    return [set](const BinaryPlace& place) { return place.device == set; };
}

}  // namespace VemoKesConfigTools
