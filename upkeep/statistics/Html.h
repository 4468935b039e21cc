// Pieces of a page: texts that come from the store and may hold anything, and tables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tsl {

// To be put between tags or into an attribute: no character of it can end its place. Control
// characters show as their pictures, those that no page may hold as U+FFFD. REQUIRES: UTF-8.
std::string EscapeHtml(std::string_view text);

// "<name class="className">content</name>", without the class where it is empty. Only the content
// may be other than a fixed text; it is HTML.
std::string Element(std::string_view name, std::string_view className, std::string_view content);

struct HtmlColumn {
    std::string title;
    bool isNumber = false;
};

// The first cell of a row is its heading. Cells are HTML.
class CHtmlTable {
public:
    // The class, if any, is that of the frame.
    CHtmlTable(std::string caption, std::vector<HtmlColumn> columns, std::string className = {});

    // REQUIRES: one cell per column.
    void Add(const std::vector<std::string>& cells);

    // In a frame of its own, which scrolls where the table is wider or higher than there is room.
    std::string Html() const;

private:
    std::string m_caption;
    std::vector<HtmlColumn> m_columns;
    std::string m_class;
    std::string m_rows;
};

} // namespace tsl
