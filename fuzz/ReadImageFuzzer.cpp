// Any bytes as a device image, as they are and repaired, and nothing but read: `ImageFuzzer.cpp` has what
// must hold of what was taken.

#include "BinaryFixture.h"
#include "ImageRepair.h"
#include "ScratchFile.h"
#include "plugins/image/CImageReader.h"
#include "plugins/image/ImageInfo.h"

namespace {

void Read(const std::string& bytes) {
    static const KesFuzz::ScratchFile file;
    file.Write(bytes);
    KesFuzz::CImageReader reader(file.Path(), KesFuzz::FamilyOf(bytes));
    KesFuzz::Taken(reader, KesFuzz::SystemOfImage(file.Path()).value_or("sys_1_0"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Read(bytes);
    Read(KesFuzz::RepairedImage(bytes));
    return 0;
}
