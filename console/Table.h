// Rows of texts as aligned columns that fit a width.
#pragma once

#include <string>
#include <vector>

namespace tsl {

struct TableColumn {
    std::string title;
    bool alignRight = false;
    size_t widest = 1000; // longer cells are cut
    size_t narrowest = 0; // shorter ones are padded
};

// One line a row, the titles first. The last column is cut to the width, others to their own limit,
// with an ellipsis. Cells are UTF-8; characters that take two columns of a terminal are counted so.
class CTable {
public:
    explicit CTable(std::vector<TableColumn> columns) : m_columns(std::move(columns)) {}

    // REQUIRES: one cell per column.
    void Add(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }

    std::vector<std::string> Lines(size_t width) const;

private:
    std::vector<TableColumn> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

// How many columns a terminal shows the text in.
size_t DisplayWidth(std::string_view text);

} // namespace tsl
