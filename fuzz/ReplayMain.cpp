// Runs a fuzz target over kept inputs, with any compiler: files, or folders with files
// below them.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    // Said before, so that the input that stops the process is the last one named.
    std::fprintf(stderr, "%s\n", path.c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            Replay(argv[i]);
            ++count;
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (!entry.is_regular_file()) continue;
            Replay(entry.path());
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
