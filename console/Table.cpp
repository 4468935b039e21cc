#include "console/Table.h"

#include <algorithm>

#include "console/Text.h"

namespace tsl {

namespace {

constexpr std::string_view kGap = "  ";
constexpr std::string_view kEllipsis = "\u2026";

struct Range {
    char32_t first;
    char32_t last;
};

// Characters that terminals show two columns wide, and those that take none.
constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF},
                           {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFE30, 0xFE6F},
                           {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
                           {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
constexpr Range kZero[] = {{0x0300, 0x036F}, {0x0591, 0x05BD}, {0x064B, 0x065F}, {0x0900, 0x0902},
                           {0x093A, 0x093A}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D},
                           {0x200B, 0x200F}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}};

template <size_t kCount>
bool IsIn(const Range (&ranges)[kCount], char32_t character) {
    return std::ranges::any_of(ranges, [&](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

size_t WidthOf(char32_t character) {
    if (IsIn(kZero, character)) return 0;
    return IsIn(kWide, character) ? 2 : 1;
}

// Takes the first character off the text.
char32_t NextCharacter(std::wstring_view& text) {
    const char32_t first = text[0];
    const bool pair = first >= 0xD800 && first < 0xDC00 && text.size() > 1;
    const char32_t second = pair ? text[1] : 0;
    text.remove_prefix(pair ? 2 : 1);
    return pair ? 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00) : first;
}

std::string CutTo(std::string_view text, size_t width) {
    if (DisplayWidth(text) <= width) return std::string(text);
    if (width == 0) return {};
    const std::wstring wide = ToUtf16(text);
    std::wstring_view rest(wide);
    size_t used = 0;
    while (!rest.empty()) {
        std::wstring_view after = rest;
        const size_t next = WidthOf(NextCharacter(after));
        if (used + next > width - 1) break;
        used += next;
        rest = after;
    }
    const size_t kept = wide.size() - rest.size();
    return ToUtf8(std::wstring_view(wide).substr(0, kept)).append(kEllipsis);
}

} // namespace

size_t DisplayWidth(std::string_view text) {
    const std::wstring wide = ToUtf16(text);
    std::wstring_view rest(wide);
    size_t width = 0;
    while (!rest.empty())
        width += WidthOf(NextCharacter(rest));
    return width;
}

std::vector<std::string> CTable::Lines(size_t width) const {
    std::vector<size_t> widths;
    for (size_t column = 0; column < m_columns.size(); ++column) {
        size_t widest = DisplayWidth(m_columns[column].title);
        for (const auto& row : m_rows) {
            widest = std::max(widest, DisplayWidth(OneLine(row[column])));
        }
        widths.push_back(std::clamp(widest, m_columns[column].narrowest, m_columns[column].widest));
    }
    const auto line = [&](const auto& cellOf) {
        std::string text;
        size_t used = 0;
        for (size_t column = 0; column < m_columns.size(); ++column) {
            const bool last = column + 1 == m_columns.size();
            std::string cell = OneLine(cellOf(column));
            const size_t room = width > used ? width - used : 0;
            cell = CutTo(cell, last ? room : widths[column]);
            const std::string padding(widths[column] - std::min(widths[column], DisplayWidth(cell)),
                                      ' ');
            if (m_columns[column].alignRight) text += padding;
            text += cell;
            if (last) break;
            if (!m_columns[column].alignRight) text += padding;
            text += kGap;
            used += widths[column] + kGap.size();
        }
        while (text.ends_with(' '))
            text.pop_back();
        return text;
    };
    std::vector<std::string> lines;
    lines.push_back(line([&](size_t column) { return m_columns[column].title; }));
    for (const auto& row : m_rows) {
        lines.push_back(line([&](size_t column) { return row[column]; }));
    }
    return lines;
}

} // namespace tsl
