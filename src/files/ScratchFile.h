#pragma once

#include "messages/Export.h"

#include <memory>
#include <string>
#include <string_view>

namespace VemoKesConfigTools::files {

class TemporaryFile;

/// A file of this content in the folder for temporary files, under a name that nobody can guess and for the
/// user alone; gone with the object, or with a signal that ends the process. For what needs a path.
class KES_API ScratchFile {
public:
    /// Throws `FileError`.
    explicit ScratchFile(std::string_view content);
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile();

    const std::string& Path() const;

private:
    std::unique_ptr<TemporaryFile> mFile;
};

}  // namespace VemoKesConfigTools::files
