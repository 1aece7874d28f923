#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CCodedFile.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

#include <istream>
#include <memory>
#include <string>

namespace VemoKesConfigTools {

/// The bottom of the reader: a whole text in memory, with every line end (LF, CR LF, CR, CR CR) made one
/// newline, and the position of the next character.
class CUnicodeFile final : public CTextReader {
public:
    /// Reads the stream to its end. A stream that is not good gives an empty text; one that fails gives what
    /// came.
    explicit CUnicodeFile(std::istream* stream);

    bool Eof() override { return mPosition.eof; }
    char GetChar() override;
    /// At the end of the text this sets `Eof`.
    char PeekChar() override;
    std::string PeekString(std::size_t n) override;
    Position GetPosition() override { return mPosition; }
    void SetPosition(Position position) override { mPosition = position; }
    std::string_view PlainRun() override;
    void Consume(std::size_t n) override;
    CTextReader* Bottom() override { return this; }
    const Position& At() const override { return mPosition; }

    std::uint32_t GetLine() const { return mPosition.line; }
    std::uint32_t GetColumn() const { return mPosition.column; }

private:
    std::istream* mpStream;
    std::string mText;
    std::unique_ptr<CCodedFile> mpCoder;
    Position mPosition;
};

}  // namespace VemoKesConfigTools
