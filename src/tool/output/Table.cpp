#include "tool/output/Table.h"

#include "tool/output/Printable.h"

#include <algorithm>

namespace kes::tool {

std::size_t CodePoints(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

void Table::Add(const std::vector<std::string>& row) {
    std::vector<std::string>& cells = mRows.emplace_back();
    cells.reserve(row.size());
    for (const std::string& cell : row) cells.push_back(Printable(cell));
}

void Table::Print(std::ostream& stream) const {
    std::vector<std::size_t> widths(mRows.front().size());
    for (const std::vector<std::string>& row : mRows) {
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], CodePoints(row[i]));
    }
    for (const std::vector<std::string>& row : mRows) {
        std::string line;
        std::size_t pad = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            // Blanks go in front of a text only, so that no line ends in any.
            if (!row[i].empty()) line.append(pad, ' ').append(row[i]);
            pad = (row[i].empty() ? pad : 0) + widths[i] - CodePoints(row[i]) + 2;
        }
        stream << line << '\n';
    }
}

}  // namespace kes::tool
