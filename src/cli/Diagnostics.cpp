#include "cli/Diagnostics.h"

#include "cli/Platform.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string_view>

namespace kes::cli {

namespace {

/// The value of a variable of the environment; empty when it is not set.
std::string_view Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

bool WantsColor(bool noColor, bool terminal) {
    if (noColor || !Variable("NO_COLOR").empty()) return false;
    const std::string_view force = Variable("CLICOLOR_FORCE");
    if (!force.empty() && force != "0") return true;
    return terminal && Variable("TERM") != "dumb";
}

}  // namespace

Diagnostics::Diagnostics(bool noColor)
    : mTerminal(ErrorsGoToTerminal()), mColor(WantsColor(noColor, mTerminal)) {}

void Diagnostics::Report(const std::string& file, const char* severity, const std::string& text) const {
    std::cerr << file << ": ";
    Severity(severity, text);
}

void Diagnostics::Report(const std::string& file, std::uint32_t line, std::uint32_t column,
                         const char* severity, const std::string& text) const {
    std::cerr << file << ':' << line << ':' << column << ": ";
    Severity(severity, text);
}

void Diagnostics::Severity(const char* severity, const std::string& text) const {
    if (mColor) {
        const bool error = std::strcmp(severity, "error") == 0;
        std::cerr << (error ? "\x1b[1;31m" : "\x1b[1;36m") << severity << ":\x1b[0m " << text << '\n';
    } else {
        std::cerr << severity << ": " << text << '\n';
    }
}

void Diagnostics::ShowSource(const std::string& path, std::uint32_t line, std::uint32_t column) {
    if (!mTerminal || line == 0) return;
    if (!mSource || mSource->Path() != path) mSource.emplace(path);
    ShowLine(mSource->Line(line), column);
}

void Diagnostics::ShowLine(std::string_view line, std::uint32_t column) const {
    if (!mTerminal) return;
    // Neither the caret nor its line is of use in a line of megabytes, and no byte may act on the terminal.
    const std::string_view source = line.substr(0, WIDEST_SOURCE);
    std::string shown;
    std::string below;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const auto c = static_cast<unsigned char>(source[i]);
        shown += c == '\t' || (c >= 0x20 && c != 0x7F) ? source[i] : '?';
        if (i + 1 < column && (c & 0xC0U) != 0x80U) below += c == '\t' ? '\t' : ' ';
    }
    std::cerr << "  " << shown << '\n';
    if (column <= source.size() + 1) {
        std::cerr << "  " << below << (mColor ? "\x1b[1;32m^\x1b[0m" : "^") << '\n';
    }
}

}  // namespace kes::cli
