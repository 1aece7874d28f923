#pragma once

#include "messages/Export.h"

#include <memory>
#include <ostream>
#include <string>

namespace VemoKesConfigTools::files {

/// A file that is written from its start as it comes, without the care of `ReplaceFile`: what was there is
/// gone once it is open. A failure sets the stream's bad state.
class KES_API OutputStream : public std::ostream {
public:
    /// Fails, with the bad state set, when the file cannot be opened.
    explicit OutputStream(const std::string& path);
    ~OutputStream() override;

    /// Writes what is left in the buffer and closes the file. Gives whether all was written.
    bool Close();

private:
    class Buffer;
    std::unique_ptr<Buffer> mpBuffer;
};

}  // namespace VemoKesConfigTools::files
