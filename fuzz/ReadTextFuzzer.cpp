// Any bytes as a text, once: nothing but the reader and the model, as fast as can be. `ReaderFuzzer.cpp` has
// what must hold of a reading.

#include "FuzzFixture.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace KesFuzz;
    const Input input(data, size);
    Messages::Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    std::istringstream stream(input.text);
    CKesConfigReader reader(&stream);
    CChipConfig config;
    CKesContext context = input.Context();
    reader.SetMetadataProvider(&Keys());
    reader.SetObserver(&config);
    reader.Read(context);
    return 0;
}
