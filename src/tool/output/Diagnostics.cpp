#include "tool/output/Diagnostics.h"

#include "tool/output/Platform.h"
#include "tool/output/Printable.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace kes::tool {

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
    Print(Printable(file), severity, text);
}

void Diagnostics::Report(const std::string& file, std::uint32_t line, std::uint32_t column,
                         const char* severity, const std::string& text) const {
    Print(Printable(file) + ":" + std::to_string(line) + ":" + std::to_string(column), severity, text);
}

void Diagnostics::Print(const std::string& where, const std::string& severity,
                        const std::string& text) const {
    std::string line = where + ": ";
    if (mColor) {
        line.append(severity == "error" ? "\x1b[1;31m" : "\x1b[1;36m").append(severity).append(":\x1b[0m ");
    } else {
        line.append(severity).append(": ");
    }
    PrintError(line + PrintableLines(text) + "\n");
}

void Diagnostics::ShowLine(std::string_view line, std::uint32_t column) const {
    if (!mTerminal) return;
    // Neither the caret nor its line is of use in a line of megabytes, and no byte may act on the terminal.
    const std::string_view source = line.substr(0, WIDEST_SOURCE);
    std::string shown;
    std::string below;
    for (std::size_t at = 0; at < source.size();) {
        const Character character = FirstCharacter(source.substr(at));
        const bool asIs = character.printable || source[at] == '\t';
        shown += asIs ? source.substr(at, character.size) : "?";
        if (at + 1 < column) below += source[at] == '\t' ? '\t' : ' ';
        at += character.size;
    }
    std::string lines = "  " + shown + "\n";
    if (column <= source.size() + 1) {
        lines += "  " + below + (mColor ? "\x1b[1;32m^\x1b[0m" : "^") + "\n";
    }
    PrintError(lines);
}

void PrintError(const std::string& lines) { std::cerr << lines; }

}  // namespace kes::tool
