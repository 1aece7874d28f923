#include "bench/Subject.h"

#include <fstream>
#include <stdexcept>

namespace KesBench {

std::vector<Address> AddressesOf(const Workload& workload, const std::vector<std::size_t>& keys) {
    std::vector<Address> addresses;
    for (const std::size_t key : keys)
        addresses.push_back({PlaceName(workload.PlaceOf(key)), workload.At(key).name});
    return addresses;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string content(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    if (!file.read(content.data(), static_cast<std::streamsize>(content.size())))
        throw std::runtime_error("cannot read " + path);
    return content;
}

}  // namespace KesBench
