#pragma once

#include <istream>
#include <string>

namespace VemoKesConfigTools {

/// Turns the bytes of a stream into characters of one byte.
class CCodedFile {
public:
    explicit CCodedFile(std::istream* stream) : mpStream(stream) {}
    CCodedFile(const CCodedFile&) = delete;
    CCodedFile& operator=(const CCodedFile&) = delete;
    virtual ~CCodedFile() = default;

    /// The next character. It means nothing when the stream is no longer good afterwards.
    virtual char ReadChar() = 0;
    /// Appends all characters up to the end of the stream, which is then no longer good.
    virtual void ReadAll(std::string& text);

protected:
    std::istream* mpStream;
};

/// One byte is one character: nothing is decoded or validated, so that UTF-8 passes through.
class CUTF8CodedFile final : public CCodedFile {
public:
    using CCodedFile::CCodedFile;
    char ReadChar() override;
    void ReadAll(std::string& text) override;
};

/// Two bytes are one character: the first of them.
class CUCS2LECodedFile final : public CCodedFile {
public:
    using CCodedFile::CCodedFile;
    char ReadChar() override;
};

/// Two bytes are one character: the second of them.
class CUCS2BECodedFile final : public CCodedFile {
public:
    using CCodedFile::CCodedFile;
    char ReadChar() override;
};

}  // namespace VemoKesConfigTools
