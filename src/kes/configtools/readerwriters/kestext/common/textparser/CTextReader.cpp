#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"

namespace VemoKesConfigTools {

char CTextReader::PeekChar() {
    if (const std::string_view run = PlainRun(); !run.empty()) return run.front();
    const Position saved = GetPosition();
    const char c = GetChar();
    SetPosition(saved);
    return c;
}

std::string CTextReader::PeekString(std::size_t n) {
    if (const std::string_view run = PlainRun(); run.size() >= n) return std::string(run.substr(0, n));
    std::string text;
    const Position saved = GetPosition();
    while (text.size() < n) {
        const char c = GetChar();
        if (Eof()) break;
        text.push_back(c);
    }
    SetPosition(saved);
    return text;
}

bool CTextReader::Skip(std::size_t n) {
    if (const std::string_view run = PlainRun(); n != 0 && run.size() >= n) {
        Consume(n);
        return false;
    }
    bool eof = Eof();
    for (; n != 0 && !eof; --n) {
        GetChar();
        eof = Eof();
    }
    return eof;
}

namespace {

/// Walks to the end of the line and past its newline, giving each piece on the way to `take`.
template <typename Take>
void WalkLine(CTextReader& reader, Take take) {
    for (;;) {
        const std::string_view run = reader.PlainRun();
        if (const std::size_t end = run.find('\n'); end != std::string_view::npos) {
            take(run.substr(0, end));
            reader.Consume(end + 1);
            return;
        }
        take(run);
        reader.Consume(run.size());
        const char c = reader.GetChar();
        if (reader.Eof() || c == '\n') return;
        take(std::string_view(&c, 1));
    }
}

}  // namespace

std::string CTextReader::ReadLine() {
    std::string line;
    WalkLine(*this, [&](std::string_view piece) { line.append(piece); });
    return line;
}

void CTextReader::SkipLine() {
    WalkLine(*this, [](std::string_view /*piece*/) {});
}

std::string CTextReader::PeekLine() {
    const Position saved = GetPosition();
    std::string line = ReadLine();
    SetPosition(saved);
    return line;
}

bool CTextReader::AtEnd() {
    if (!PlainRun().empty()) return false;
    const Position saved = GetPosition();
    GetChar();
    const bool eof = Eof();
    SetPosition(saved);
    return eof;
}

bool CTextReader::AtLineEnd() {
    const char c = PeekChar();
    return c == '\n' || (c == '\xFF' && AtEnd());
}

}  // namespace VemoKesConfigTools
