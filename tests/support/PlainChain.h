#pragma once

// The filters in their simplest form: one character at a time, without runs and caches. Tests compare the
// fast chain and whole reads with it.

#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"

#include <string>
#include <utility>

namespace KesTest {

using VemoKesConfigTools::CTextReader;

/// A reader on top of another that offers no runs, so that callers read single characters.
class PlainReader : public CTextReader {
public:
    explicit PlainReader(CTextReader& source) : mSource(source) {}
    bool Eof() override { return mSource.Eof(); }
    char GetChar() override { return mSource.GetChar(); }
    Position GetPosition() override { return mSource.GetPosition(); }
    void SetPosition(Position position) override { mSource.SetPosition(position); }
    std::string_view PlainRun() override { return {}; }
    void Consume(std::size_t /*n*/) override {}
    CTextReader* Bottom() override { return mSource.Bottom(); }
    const Position& At() const override { return mSource.At(); }

protected:
    CTextReader& mSource;
};

class PlainConcat final : public PlainReader {
public:
    using PlainReader::PlainReader;
    char GetChar() override {
        for (;;) {
            const Position saved = GetPosition();
            if (mSource.GetChar() == '\\') {
                if (mSource.GetChar() == '\n') continue;
                if (Eof()) break;
            }
            SetPosition(saved);
            break;
        }
        return mSource.GetChar();
    }
};

class PlainLineComment final : public PlainReader {
public:
    using PlainReader::PlainReader;
    char GetChar() override {
        if (VemoKesConfigTools::gFiltersEnabled && mSource.PeekString(1) == "#") {
            while (mSource.PeekChar() != '\n') {
                mSource.GetChar();
                if (Eof()) break;
            }
        }
        return mSource.GetChar();
    }
};

class PlainBlockComment final : public PlainReader {
public:
    using PlainReader::PlainReader;
    char GetChar() override {
        if (VemoKesConfigTools::gFiltersEnabled && mSource.PeekString(2) == "/*") {
            mSource.Skip(2);
            while (!Eof() && mSource.PeekString(2) != "*/") mSource.Skip(1);
            mSource.Skip(2);
        }
        return mSource.GetChar();
    }
};

/// The usual chain on a file.
class PlainChain final : public PlainReader {
public:
    explicit PlainChain(CTextReader& file) : PlainReader(static_cast<CTextReader&>(mTop)), mFile(file) {}

private:
    PlainReader mFile;
    PlainConcat mJoined{mFile};
    PlainLineComment mUncommented{mJoined};
    PlainBlockComment mTop{mUncommented};
};

}  // namespace KesTest
