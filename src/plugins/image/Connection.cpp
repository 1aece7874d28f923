#include "plugins/image/Connection.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"

namespace VemoKesConfigTools {

std::string PathOfConnection(std::string_view connection) {
    constexpr std::string_view SCHEME = "file:";
    if (connection.starts_with(SCHEME)) connection.remove_prefix(SCHEME.size());
    const std::size_t mark = connection.find('?');
    if (mark != std::string_view::npos && mark + 1 != connection.size()) {
        throw Refusal(STR_OPERATION_INVALID, "unknown option \"" + std::string(connection.substr(mark + 1)) +
                                                 "\" after \"?\": device images have none");
    }
    std::string path(connection.substr(0, mark));
    if (path.empty()) throw Refusal(STR_OPERATION_INVALID, "the connection does not name a file");
    return path;
}

}  // namespace VemoKesConfigTools
