#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kes::tool {

/// Rows of texts, printed in columns, with what is not printable in quoted form. Widths count code points of
/// UTF-8.
class Table {
public:
    explicit Table(const std::vector<std::string>& heads) { Add(heads); }
    void Add(const std::vector<std::string>& row);
    void Print(std::ostream& stream) const;

private:
    std::vector<std::vector<std::string>> mRows;
};

/// The number of code points of a UTF-8 text.
std::size_t CodePoints(std::string_view text);

}  // namespace kes::tool
