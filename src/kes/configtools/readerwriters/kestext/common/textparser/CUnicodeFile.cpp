#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"

#include <cstring>

namespace VemoKesConfigTools {

namespace {

constexpr char END_OF_TEXT = -1;

/// Makes each CR a newline. The one character behind a CR is dropped when it is a CR or LF itself.
void FoldLineEnds(std::string& text) {
    const char* const end = text.data() + text.size();
    const char* from = text.data();
    char* to = text.data();
    for (;;) {
        const void* found =
            from == end ? nullptr : std::memchr(from, '\r', static_cast<std::size_t>(end - from));
        const char* const stop = found != nullptr ? static_cast<const char*>(found) : end;
        const auto length = static_cast<std::size_t>(stop - from);
        if (to != from) std::memmove(to, from, length);
        to += length;
        if (stop == end) break;
        *to++ = '\n';
        from = stop + 1;
        if (from == end) continue;
        if (*from != '\r' && *from != '\n') *to++ = *from;
        ++from;
    }
    text.resize(static_cast<std::size_t>(to - text.data()));
}

}  // namespace

CUnicodeFile::CUnicodeFile(std::istream* stream)
    : mpStream(stream), mpCoder(std::make_unique<CUTF8CodedFile>(stream)) {
    if (!mpStream->good()) return;
    mpCoder->ReadAll(mText);
    FoldLineEnds(mText);
}

char CUnicodeFile::GetChar() {
    if (mPosition.eof) return END_OF_TEXT;
    if (mPosition.offset == mText.size()) {
        mPosition.eof = true;
        return END_OF_TEXT;
    }
    const char c = mText[mPosition.offset++];
    if (c == '\n') {
        ++mPosition.line;
        mPosition.column = 0;
    } else {
        ++mPosition.column;
    }
    return c;
}

char CUnicodeFile::PeekChar() {
    if (mPosition.offset < mText.size()) return mText[mPosition.offset];
    mPosition.eof = true;
    return END_OF_TEXT;
}

std::string CUnicodeFile::PeekString(std::size_t n) { return std::string(PlainRun().substr(0, n)); }

std::string_view CUnicodeFile::PlainRun() {
    if (mPosition.eof) return {};
    return std::string_view(mText).substr(mPosition.offset);
}

void CUnicodeFile::Consume(std::size_t n) {
    const char* from = mText.data() + mPosition.offset;
    const char* const end = from + n;
    mPosition.offset += n;
    while (const void* found = std::memchr(from, '\n', static_cast<std::size_t>(end - from))) {
        from = static_cast<const char*>(found) + 1;
        ++mPosition.line;
        mPosition.column = 0;
    }
    mPosition.column += static_cast<std::uint32_t>(end - from);
}

}  // namespace VemoKesConfigTools
