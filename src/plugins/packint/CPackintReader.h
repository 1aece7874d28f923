#pragma once

#include "plugins/binary/CBinaryReader.h"

#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// The reader of one chunk file, from a file or a stream.
class CPackintReader final : public CBinaryReader {
public:
    /// Reads the file of this name, opened anew for each read.
    explicit CPackintReader(std::string fileName) : mFileName(std::move(fileName)) {}
    /// Reads the whole of the stream, not owned, wherever it stands and whatever state it is in. The tag
    /// `STR_INPUT_FILE`, where the context has it, is what messages name.
    explicit CPackintReader(std::istream* stream) : mpStream(stream) {}

protected:
    std::vector<EncodedPlace> Collect(CKesContext& context, std::string& subject) override;

private:
    std::string Content() const;

    std::string mFileName;
    std::istream* mpStream = nullptr;
};

}  // namespace VemoKesConfigTools
