#pragma once

#include "plugins/binary/CBinaryReader.h"

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Reads one chunk file, from a file or a stream.
class CPackintReader final : public CBinaryReader {
public:
    /// Reads the file with this name, which is opened again for each read.
    explicit CPackintReader(std::string fileName) : mFileName(std::move(fileName)) {}
    /// Reads the whole stream, regardless of its position and state; it is not owned. Messages use the name
    /// in the context's tag `STR_INPUT_FILE`.
    explicit CPackintReader(std::istream* stream) : mpStream(stream) {}

protected:
    std::vector<EncodedPlace> Collect(CKesContext& context, std::string& subject) override;

private:
    std::string Content() const;

    std::string mFileName;
    std::istream* mpStream = nullptr;
};

}  // namespace VemoKesConfigTools
