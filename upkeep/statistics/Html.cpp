#include "upkeep/statistics/Html.h"

namespace tsl {

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD"; // U+FFFD

// U+2400 on stand for the control characters.
std::string PictureOf(unsigned char control) {
    if (control == 0x7F) return "\xE2\x90\xA1"; // U+2421
    return {'\xE2', '\x90', static_cast<char>(0x80 + control)};
}

std::string EscapedByte(unsigned char byte) {
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return byte < 0x20 || byte == 0x7F ? PictureOf(byte)
                                           : std::string(1, static_cast<char>(byte));
    }
}

// The control characters from U+0080 on take two bytes, C2 and this.
bool IsHighControl(std::string_view rest) {
    return rest.size() > 1 && rest[0] == '\xC2' && static_cast<unsigned char>(rest[1]) < 0xA0;
}

// U+FFFE and U+FFFF are no characters.
bool IsNoCharacter(std::string_view rest) {
    return rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF");
}

std::string_view Alignment(const HtmlColumn& column) {
    return column.isNumber ? " class=\"number\"" : "";
}

} // namespace

std::string EscapeHtml(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        const size_t replaced = IsHighControl(text) ? 2 : IsNoCharacter(text) ? 3 : 0;
        escaped += replaced ? kReplacement : EscapedByte(static_cast<unsigned char>(text.front()));
        text.remove_prefix(replaced ? replaced : 1);
    }
    return escaped;
}

std::string Element(std::string_view name, std::string_view className, std::string_view content) {
    std::string element("<");
    element += name;
    if (!className.empty()) element.append(" class=\"").append(className).append("\"");
    return element.append(">").append(content).append("</").append(name).append(">\n");
}

CHtmlTable::CHtmlTable(std::string caption, std::vector<HtmlColumn> columns, std::string className)
    : m_caption(std::move(caption)), m_columns(std::move(columns)), m_class(std::move(className)) {}

void CHtmlTable::Add(const std::vector<std::string>& cells) {
    m_rows += "<tr>";
    for (size_t index = 0; index < cells.size(); ++index) {
        const std::string_view name = index == 0 ? "th" : "td";
        m_rows.append("<").append(name).append(index == 0 ? " scope=\"row\"" : "");
        m_rows.append(Alignment(m_columns[index])).append(">").append(cells[index]);
        m_rows.append("</").append(name).append(">");
    }
    m_rows += "</tr>\n";
}

std::string CHtmlTable::Html() const {
    // With the keyboard it can be scrolled only when it can have the focus.
    std::string html = "<div class=\"scroll" + (m_class.empty() ? m_class : " " + m_class) +
                       "\" role=\"region\" tabindex=\"0\" aria-label=\"" + EscapeHtml(m_caption) +
                       "\">\n<table>\n<caption>" + EscapeHtml(m_caption) +
                       "</caption>\n<thead><tr>";
    for (const HtmlColumn& column : m_columns) {
        html.append("<th scope=\"col\"").append(Alignment(column)).append(">");
        html.append(EscapeHtml(column.title)).append("</th>");
    }
    return html + "</tr></thead>\n<tbody>\n" + m_rows + "</tbody>\n</table>\n</div>\n";
}

} // namespace tsl
