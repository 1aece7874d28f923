#include "files/ScratchFile.h"

#include "files/Files.h"
#include "files/TemporaryFile.h"

namespace VemoKesConfigTools::files {

ScratchFile::ScratchFile(std::string_view content)
    : mFile(std::make_unique<TemporaryFile>(Join(Disk().TemporaryFolder(), "scratch"), REPLACEMENT_MARK,
                                            /*isShared=*/false)) {
    mFile->File().Write(0, content);
}

ScratchFile::~ScratchFile() = default;

const std::string& ScratchFile::Path() const { return mFile->Path(); }

}  // namespace VemoKesConfigTools::files
