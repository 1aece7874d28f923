// Any bytes as a chunk file, as they are and with magic, size and checksum put right around them: they are
// refused whole, or taken, and then written and read again without a change.

#include "BinaryFixture.h"
#include "ChunkRepair.h"
#include "model/CRawKeysWriter.h"
#include "plugins/binary/CBinaryWriter.h"
#include "plugins/binary/ChunkFile.h"
#include "plugins/packint/CPackintReader.h"
#include "support/TextWriting.h"

#include <sstream>
#include <vector>

namespace {

using namespace KesFuzz;

/// The chunk files of a configuration, in memory.
class ChunkList final : public CBinaryWriter {
public:
    std::vector<std::string> files;

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& /*subject*/) override {
        for (const EncodedPlace& place : places) files.push_back(EncodeChunk({context.Chip(), place}));
    }
};

std::unique_ptr<CChipConfig> Read(const std::string& bytes, const std::string& system) {
    std::istringstream stream(bytes);
    CPackintReader reader(&stream);
    return Taken(reader, system);
}

std::vector<std::string> Write(CChipConfig& config, const std::string& system) {
    const Messages messages;
    ChunkList writer;
    writer.SetMetadataProvider(&Keys());
    CKesContext context;
    context.SetChip(system);
    if (!config.Write(writer, context) || !Messages::LastError().empty())
        Fault("not written", Dump(config), Messages::LastError());
    return writer.files;
}

/// What was taken can be written as a text too, whatever reads back of it.
void WriteText(CChipConfig& config, const std::string& system) {
    std::ostringstream stream;
    CKesWriter text(&stream, &Keys());
    CRawKeysWriter front(text, Keys());
    CKesContext context;
    context.SetChip(system);
    if (!config.Write(front, context)) Fault("no text", Dump(config), Messages::LastError());
}

void Check(const std::string& bytes) {
    const std::string system = SystemOfChunk(bytes).value_or("sys_1_0");
    const auto config = Read(bytes, system);
    if (!config) return;
    const std::vector<std::string> files = Write(*config, system);
    if (files.size() != 1) Fault("not one place", Dump(*config), std::to_string(files.size()));
    const auto second = Read(files[0], system);
    if (!second) Fault("the written file is refused", Dump(*config), DumpBytes(files[0]));
    ExpectSame("another model", *config, *second);
    if (Dump(*config) != Dump(*second)) Fault("another order", Dump(*config), Dump(*second));
    if (DumpStores(config->Stores()) != DumpStores(second->Stores()))
        Fault("other stores", DumpStores(config->Stores()), DumpStores(second->Stores()));
    if (Write(*second, system) != files) Fault("other bytes", Dump(*config), DumpBytes(files[0]));
    WriteText(*config, system);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Check(bytes);
    Check(RepairedChunk(bytes));
    return 0;
}
