#include "kes/configtools/readerwriters/kestext/common/textparser/CCodedFile.h"

namespace VemoKesConfigTools {

void CCodedFile::ReadAll(std::string& text) {
    while (mpStream->good()) {
        const char c = ReadChar();
        if (mpStream->good()) text.push_back(c);
    }
}

char CUTF8CodedFile::ReadChar() {
    char c = 0;
    mpStream->get(c);
    return mpStream->good() ? c : '\0';
}

void CUTF8CodedFile::ReadAll(std::string& text) {
    constexpr std::size_t BLOCK = 64UL * 1024UL;
    // What the stream knows to have is read at once, and no room is made beyond it before more is seen to
    // come, so that a large text is not moved as it grows, and a short one costs little.
    do {
        const std::streamsize known = mpStream->rdbuf()->in_avail();
        const std::size_t block = known > 0 ? static_cast<std::size_t>(known) : BLOCK;
        const std::size_t before = text.size();
        text.resize(before + block);
        mpStream->read(text.data() + before, static_cast<std::streamsize>(block));
        text.resize(before + static_cast<std::size_t>(mpStream->gcount()));
    } while (mpStream->good() && mpStream->peek() != std::istream::traits_type::eof());
}

char CUCS2LECodedFile::ReadChar() {
    char c = 0;
    if (!mpStream->good()) return 0;
    mpStream->get(c);
    char dropped = 0;
    if (mpStream->good()) mpStream->get(dropped);
    return c;
}

char CUCS2BECodedFile::ReadChar() {
    char c = 0;
    if (mpStream->good()) mpStream->get(c);
    if (!mpStream->good()) return 0;
    mpStream->get(c);
    return c;
}

}  // namespace VemoKesConfigTools
