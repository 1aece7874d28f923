#pragma once

#include "messages/Export.h"

#include <memory>
#include <string>
#include <string_view>

namespace VemoKesConfigTools::files {

class TemporaryFile;

/// A file with the given content in the folder for temporary files, with an unpredictable name and accessible
/// to the user only. It is removed with the object, or by a signal that ends the process. For interfaces that
/// take a path.
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
