#include "tool/output/Json.h"

#include <iostream>

namespace kes::tool {

Json JsonDocument(const std::string& command) {
    constexpr int FORMAT = 1;
    return {{"format", FORMAT}, {"command", command}};
}

void PrintJson(const Json& document) {
    constexpr int INDENT = 2;
    std::cout << document.dump(INDENT, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) << '\n';
}

}  // namespace kes::tool
