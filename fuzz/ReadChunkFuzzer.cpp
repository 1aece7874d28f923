// Any bytes as a chunk file, as they are and repaired, and nothing but read: `ChunkFuzzer.cpp` has what must
// hold of what was taken.

#include "BinaryFixture.h"
#include "ChunkRepair.h"
#include "plugins/packint/CPackintReader.h"

#include <sstream>

namespace {

void Read(const std::string& bytes) {
    std::istringstream stream(bytes);
    KesFuzz::CPackintReader reader(&stream);
    KesFuzz::Taken(reader, KesFuzz::SystemOfChunk(bytes).value_or("sys_1_0"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Read(bytes);
    Read(KesFuzz::RepairedChunk(bytes));
    return 0;
}
