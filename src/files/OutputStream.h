#pragma once

#include "messages/Export.h"

#include <memory>
#include <ostream>
#include <string>

namespace VemoKesConfigTools::files {

/// A file that is overwritten directly, without the guarantees of `ReplaceFile`: the old content is lost as
/// soon as it is opened. A failure sets the stream's `badbit`.
class KES_API OutputStream : public std::ostream {
public:
    /// Sets `badbit` if the file cannot be opened.
    explicit OutputStream(const std::string& path);
    ~OutputStream() override;

    /// Flushes the buffer and closes the file. Returns whether everything was written.
    bool Close();

private:
    class Buffer;
    std::unique_ptr<Buffer> mpBuffer;
};

}  // namespace VemoKesConfigTools::files
