#pragma once

// The filter chain in its plainest form: one character at a time, no look at runs, nothing remembered. Tests
// hold the fast chain against it.

#include <string>
#include <string_view>
#include <utility>

namespace KesTest {

struct ReferencePosition {
    unsigned line = 0;
    unsigned column = 0;
    std::size_t offset = 0;
    bool eof = false;
    bool operator==(const ReferencePosition&) const = default;
};

class ReferenceReader {
public:
    virtual ~ReferenceReader() = default;
    virtual char GetChar() = 0;
    virtual ReferencePosition& At() = 0;

    char PeekChar() {
        const ReferencePosition saved = At();
        const char c = GetChar();
        At() = saved;
        return c;
    }
    std::string PeekString(std::size_t n) {
        const ReferencePosition saved = At();
        std::string text;
        while (n-- > 0) {
            const char c = GetChar();
            if (At().eof) break;
            text += c;
        }
        At() = saved;
        return text;
    }
    void Skip(std::size_t n) {
        while (n-- > 0 && !At().eof) GetChar();
    }
};

class ReferenceFile final : public ReferenceReader {
public:
    explicit ReferenceFile(std::string text) : mText(std::move(text)) {}
    char GetChar() override {
        if (mAt.eof || mAt.offset == mText.size()) {
            mAt.eof = true;
            return -1;
        }
        const char c = mText[mAt.offset++];
        mAt.column = c == '\n' ? 0 : mAt.column + 1;
        if (c == '\n') ++mAt.line;
        return c;
    }
    ReferencePosition& At() override { return mAt; }

private:
    std::string mText;
    ReferencePosition mAt;
};

class ReferenceFilter : public ReferenceReader {
public:
    explicit ReferenceFilter(ReferenceReader& source) : mSource(source) {}
    ReferencePosition& At() override { return mSource.At(); }

protected:
    ReferenceReader& mSource;
};

class ReferenceConcat final : public ReferenceFilter {
public:
    using ReferenceFilter::ReferenceFilter;
    char GetChar() override {
        for (;;) {
            const ReferencePosition saved = At();
            if (mSource.GetChar() == '\\') {
                if (mSource.GetChar() == '\n') continue;
                if (At().eof) break;
            }
            At() = saved;
            break;
        }
        return mSource.GetChar();
    }
};

class ReferenceLineComment final : public ReferenceFilter {
public:
    using ReferenceFilter::ReferenceFilter;
    char GetChar() override {
        if (mSource.PeekString(1) == "#") {
            while (mSource.PeekChar() != '\n') {
                mSource.GetChar();
                if (At().eof) break;
            }
        }
        return mSource.GetChar();
    }
};

class ReferenceBlockComment final : public ReferenceFilter {
public:
    using ReferenceFilter::ReferenceFilter;
    char GetChar() override {
        if (mSource.PeekString(2) == "/*") {
            mSource.Skip(2);
            while (!At().eof && mSource.PeekString(2) != "*/") mSource.Skip(1);
            mSource.Skip(2);
        }
        return mSource.GetChar();
    }
};

}  // namespace KesTest
