#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace VemoKesConfigTools {

/// A source of characters, which are bytes. Filters stand on top of other readers, down to the file, and all
/// share the file's position.
///
/// The end of the text is met by reading past the last character: `GetChar` then gives -1 (the byte 0xFF),
/// and `Eof` turns true. The byte 0xFF in a text is an ordinary character, so the end is told by `Eof`, or by
/// `AtEnd` in advance.
class CTextReader {
public:
    /// Where the next character stands in the file. Lines and columns count from 0, columns in bytes;
    /// messages show both plus one.
    struct Position {
        std::uint32_t line = 0;
        std::uint32_t column = 0;
        std::size_t offset = 0;
        bool eof = false;  ///< a read has gone past the end
    };

    CTextReader() = default;
    CTextReader(const CTextReader&) = delete;
    CTextReader& operator=(const CTextReader&) = delete;

    virtual ~CTextReader() = default;
    virtual bool Eof() = 0;
    virtual char GetChar() = 0;
    /// The next character, without moving.
    virtual char PeekChar();
    /// Up to `n` characters, without moving; shorter when the text ends first. `n` is at least 1.
    virtual std::string PeekString(std::size_t n);
    virtual Position GetPosition() = 0;
    virtual void SetPosition(Position position) = 0;

    /// The characters from here on that reading would deliver unchanged, one after the other: where no filter
    /// can act. May be empty although text follows; `GetChar` and `PeekChar` then know what to do. This is
    /// what makes reading fast: tokens take whole runs straight from the text. Valid until the reader goes.
    virtual std::string_view PlainRun() = 0;
    /// Moves past the first `n` characters of `PlainRun`.
    virtual void Consume(std::size_t n) = 0;
    /// The reader at the bottom of the chain, and its position as it stands at any time.
    virtual CTextReader* Bottom() = 0;
    virtual const Position& At() const = 0;

    /// Consumes up to `n` characters, stops at the end of the text, and gives `Eof`.
    bool Skip(std::size_t n);
    /// The rest of the line. The newline is consumed and not part of the result.
    std::string ReadLine();
    /// The same, without moving.
    std::string PeekLine();
    /// Consumes the rest of the line with its newline.
    void SkipLine();
    /// Whether no character follows.
    bool AtEnd();
    /// Whether the line is at its end: a newline or the end of the text follows.
    bool AtLineEnd();
};

}  // namespace VemoKesConfigTools
